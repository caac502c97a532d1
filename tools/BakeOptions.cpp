#include "tools/BakeOptions.h"
#include "host/pictures/PictureWriter.h"
#include "tools/Checks.h"
#include "tools/Commands.h"
#include "tools/Interrupt.h"
#include "tools/PictureDoubts.h"
#include "tools/ShownJob.h"
#include <algorithm>
#include <deque>
#include <fmt/core.h>

namespace {

constexpr std::string_view kOutputMark = "{output}";

/// The channels that are baked.
std::vector<std::string> ChannelsOf(const BakeOptions& options)
{
    return options.isLit ? std::vector<std::string>{"lit"} : options.channels;
}

fernwick::BakeChannel ChannelOf(const std::string& name)
{
    const auto channels = fernwick::BakeChannels();
    return std::find_if(channels.begin(), channels.end(), [&name](const fernwick::NamedBakeChannel& named) {
        return named.name == name;
    })->channel;
}

/// The file of a channel.
PictureOptions PictureOf(const BakeOptions& options, const std::string& channel)
{
    PictureOptions picture = options.picture;
    picture.file = FileOfOutput(options, channel);
    return picture;
}

/// A picture file that is baked.
class BakedFile {
public:
    BakedFile(const BakeOptions& options, const fernwick::BakeJob& job, const std::string& channel)
        : fPicture(PictureOf(options, channel)), fWriter(fPicture.file,
                                                     {.width = job.width,
                                                         .height = job.height,
                                                         .region = RegionOf(job),
                                                         .content = ContentOf(ChannelOf(channel))},
                                                     fPicture.layout, fPicture.threads)
    { }

    void Add(std::span<const TMCColorRGBA> pixels)
    {
        fDoubts.Add(pixels);
        fWriter.Write(pixels);
    }
    void Finish()
    {
        fDoubts.TellOddNumbers(fPicture.file, fPicture.layout);
        fWriter.Finish();
    }

private:
    PictureOptions fPicture;
    PictureDoubts fDoubts;
    fernwick::PictureWriter fWriter;
};

} // namespace

const char* const kChannelHelp =
    R"(Channels:
  color     the colour; of a surface shader its main colour, of a value shader its value as grey
  main      the main colour of a surface, where a shader offers a colour of its own beside it
  second, third, fourth
            the other colours of a surface
  alpha     the alpha of the colour, as grey
  coverage  the coverage that the shader answers, as grey
  value     the value, as grey; PNG holds 0 to 1 in 16 bits, not encoded
  normal    the bent normal of a vector shader or surface, as a normal map: red along U, green along V (or
            down, with --directx), blue away from the surface, in unit length; PNG holds -1 to 1 as 0 to 65535
  lit       the colour, or a grey where the shader has none, with the bent normal of a vector shader under a
            lamp: it shines from the upper left, from (-1, 1, 1); what is flat keeps its colour)";

std::vector<std::string> ChannelNames()
{
    std::vector<std::string> names;
    for (const fernwick::NamedBakeChannel& channel : fernwick::BakeChannels())
        names.emplace_back(channel.name);
    return names;
}

CLI::Option& AddBakeOptions(CLI::App& command, BakeOptions& options)
{
    CLI::Option& picture = AddPictureOptions(command, options.picture);
    command
        .add_option("--output,--outputs", options.channels,
            "What of the output shader is baked, see below; several by commas, into pictures named by "
            "{output}")
        ->type_name("CHANNEL")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(OneOf(ChannelNames()))
        ->default_str("color");
    command.add_flag("--lit", options.isLit, "Short for --output lit");
    command.add_flag("--directx", options.isDirectX, "Green of a normal map points down (DirectX), not up");
    command
        .add_option("--over", options.over,
            "Lays the colour, by its alpha, over a source, such as color:#f80, or another graph")
        ->type_name("SOURCE");
    command
        .add_option("--samples", options.samples, "Samples a pixel, for smooth edges; one is at the centre")
        ->type_name("N")
        ->check(WholeNumber(1, kMostSamples))
        ->capture_default_str();
    return picture;
}

fernwick::BakeJob JobOf(const BakeOptions& options)
{
    fernwick::BakeJob job;
    ReadSize(options.picture.size, job.width, job.height);
    job.threads = options.picture.threads;
    job.samples = options.samples;
    job.channels.clear();
    for (const std::string& channel : ChannelsOf(options))
        job.channels.push_back(ChannelOf(channel));
    job.region = RegionOf(options.picture);
    if (options.isDirectX)
        job.green = fernwick::GreenDirection::kDown;
    job.cancel = &WatchForInterrupt();
    return job;
}

void RequireSense(const BakeOptions& options)
{
    const std::vector<std::string> channels = ChannelsOf(options);
    if (options.isLit)
        for (const std::string& channel : options.channels)
            if (channel != "color" && channel != "lit")
                throw UsageError(
                    fmt::format("--lit bakes the channel \"lit\"; it can't be \"{}\" too", channel));
    if (options.isDirectX && std::find(channels.begin(), channels.end(), "normal") == channels.end())
        throw UsageError("--directx is for a normal map; it goes with --output normal");
    if (!options.over.empty()
        && std::none_of(channels.begin(), channels.end(),
            [](const std::string& channel) { return fernwick::HasGround(ChannelOf(channel)); }))
        throw UsageError(
            fmt::format("--over lies under a colour; the channel \"{}\" has none", channels.front()));
    for (size_t i = 1; i < channels.size(); ++i)
        if (std::find(channels.begin(), channels.begin() + static_cast<ptrdiff_t>(i), channels[i])
            != channels.begin() + static_cast<ptrdiff_t>(i))
            throw UsageError(fmt::format("the output \"{}\" is asked for twice", channels[i]));
    const std::string& file = options.picture.file;
    if (channels.size() > 1 && !file.empty() && file.find(kOutputMark) == std::string::npos)
        throw UsageError(
            fmt::format("{} outputs need a file each; put {} into the name of the picture, as in key.{}.png",
                channels.size(), kOutputMark, kOutputMark));
}

bool HasOutputMark(const BakeOptions& options)
{
    return options.picture.file.find(kOutputMark) != std::string::npos;
}

std::string FileOfOutput(const BakeOptions& options, const std::string& output)
{
    std::string file = options.picture.file;
    for (size_t at = 0; (at = file.find(kOutputMark, at)) != std::string::npos; at += output.size())
        file.replace(at, kOutputMark.size(), output);
    return file;
}

void RequireTarget(const BakeOptions& options)
{
    for (const std::string& channel : ChannelsOf(options))
        RequireTarget(PictureOf(options, channel));
}

void BakeToFile(fernwick::Library& library, ReportSummary& reports, const fernwick::GraphDocument& document,
    const fernwick::GraphDocument* ground, const BakeOptions& options, const std::string& name, bool isFirst,
    const BakeRunner& run)
{
    fernwick::BakeJob job = JobOf(options);
    WithName(name, [&] { RequireChannels(library, document, job.channels); });
    if (ground != nullptr) {
        job.ground = ground;
        std::vector<fernwick::BakeChannel> channels;
        for (const fernwick::BakeChannel channel : job.channels)
            if (HasGround(channel))
                channels.push_back(GroundOf(channel));
        WithName(options.over, [&] { RequireChannels(library, *ground, channels); });
    }
    std::deque<BakedFile> files;
    for (const std::string& channel : ChannelsOf(options))
        files.emplace_back(options, job, channel);
    // Of all together, before anything lies under them: one of several may well be black.
    PictureDoubts doubts;
    RunShown(job, reports, name, [&] {
        const fernwick::BakeSink sink = [&](const fernwick::BakeBand& band) {
            for (size_t i = 0; i < band.fPictures.size() && doubts.IsEmpty(); ++i)
                doubts.Add(band.fPictures[i]);
            LayOverGrounds(band);
            for (size_t i = 0; i < files.size(); ++i)
                files[i].Add(band.fPictures[i]);
        };
        return run ? run(job, sink) : Bake(library, document, job, sink);
    });
    if (isFirst)
        doubts.TellEmptySlots(document);
    for (BakedFile& file : files)
        file.Finish();
}
