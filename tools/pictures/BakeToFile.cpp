#include "tools/pictures/BakeToFile.h"
#include "host/pictures/PictureWriter.h"
#include "tools/Interrupt.h"
#include "tools/Outcome.h"
#include "tools/pictures/PictureDoubts.h"
#include "tools/pictures/PictureJob.h"
#include "tools/pictures/ShownJob.h"
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
        : fPicture(PictureOf(options, channel)),
          fWriter(fPicture.file,
              {.width = job.width,
                  .height = job.height,
                  .region = RegionOf(job),
                  .content = ContentOf(*fernwick::FindBakeChannel(channel))},
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

fernwick::BakeJob JobOf(const BakeOptions& options)
{
    fernwick::BakeJob job;
    ReadSize(options.picture.size, job.width, job.height);
    job.threads = options.picture.threads;
    job.samples = options.samples;
    job.channels.clear();
    for (const std::string& channel : ChannelsOf(options))
        job.channels.push_back(*fernwick::FindBakeChannel(channel));
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
        && std::none_of(channels.begin(), channels.end(), [](const std::string& channel) {
               return fernwick::HasGround(*fernwick::FindBakeChannel(channel));
           }))
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

void BakeToFile(fernwick::Library& library, const fernwick::GraphDocument& document,
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
    RunShown(job, name, [&] {
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
