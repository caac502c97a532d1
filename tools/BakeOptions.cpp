#include "tools/BakeOptions.h"
#include "tools/Commands.h"
#include "tools/Interrupt.h"
#include "tools/PictureDoubts.h"
#include "tools/ShadeDocument.h"
#include "tools/ShownJob.h"
#include <fmt/core.h>

namespace {

/// Bakes with a progress bar. Throws `Interrupted`.
fernwick::Picture BakeShown(fernwick::Library& library, const fernwick::GraphDocument& document,
    fernwick::BakeJob job, ReportSummary& reports, const std::string& name)
{
    return RunShown(job, reports, name, [&] { return fernwick::Bake(library, document, job); });
}

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
    command.add_option("--output", options.channel, "What of the output shader is baked, see below")
        ->type_name("CHANNEL")
        ->check(CLI::IsMember(ChannelNames()).description(""))
        ->capture_default_str();
    command.add_flag("--lit", options.isLit, "Short for --output lit");
    command.add_flag("--directx", options.isDirectX, "Green of a normal map points down (DirectX), not up");
    command
        .add_option("--over", options.over,
            "Lays the colour, by its alpha, over a source, such as color:#f80, or another graph")
        ->type_name("SOURCE");
    return picture;
}

fernwick::BakeJob JobOf(const BakeOptions& options)
{
    fernwick::BakeJob job;
    ReadSize(options.picture.size, job.width, job.height);
    job.threads = options.picture.threads;
    for (const fernwick::NamedBakeChannel& named : fernwick::BakeChannels())
        if (named.name == options.channel)
            job.channels = {named.channel};
    if (options.isLit)
        job.channels = {fernwick::BakeChannel::kLit};
    if (options.isDirectX)
        job.green = fernwick::GreenDirection::kDown;
    job.cancel = &WatchForInterrupt();
    return job;
}

void RequireSense(const BakeOptions& options)
{
    const std::string& channel = options.channel;
    if (options.isLit && channel != "color" && channel != "lit")
        throw UsageError(fmt::format("--lit bakes the channel \"lit\"; it can't be \"{}\" too", channel));
    if (options.isDirectX && (options.isLit || channel != "normal"))
        throw UsageError("--directx is for a normal map; it goes with --output normal");
    if (!options.over.empty() && channel != "color" && channel != "main" && channel != "lit")
        throw UsageError(fmt::format("--over lies under a colour; the channel \"{}\" has none", channel));
}

void BakeToFile(fernwick::Library& library, ReportSummary& reports, const fernwick::GraphDocument& document,
    const BakeOptions& options, const std::string& name)
{
    const fernwick::BakeJob job = JobOf(options);
    fernwick::Picture picture = BakeShown(library, document, job, reports, name);
    PictureDoubts doubts(picture);
    doubts.TellEmptySlots(document);
    if (!options.over.empty()) {
        fernwick::BakeJob groundJob = job;
        if (job.channels[0] == fernwick::BakeChannel::kLit)
            groundJob.channels = {fernwick::BakeChannel::kColor}; // the lamp is for what lies over it
        picture.LayOver(
            BakeShown(library, MakeGroundDocument(options.over), groundJob, reports, options.over));
        doubts = PictureDoubts(picture);
    }
    if (*job.cancel)
        throw Interrupted();
    doubts.TellOddNumbers(options.picture.file);
    picture.Save(options.picture.file, options.picture.layout);
}
