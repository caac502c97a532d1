#include "host/Bake.h"
#include "host/Graph.h"
#include "host/Library.h"
#include "host/Sources.h"
#include "tools/Commands.h"
#include "tools/Interrupt.h"
#include "tools/LibraryOption.h"
#include "tools/PictureOptions.h"
#include "tools/ProgressBar.h"
#include "tools/ReportSummary.h"
#include <fmt/core.h>

namespace {

constexpr const char* kFooter =
    R"(U runs to the right and V up. The square lies from (0, 0, 0) to (1, 1, 0) on the shaded object of the graph's
scene. Alpha is straight: colours aren't multiplied by it.

Channels:
  color     the colour; of a surface shader its main colour, of a value shader its value as grey
  main      the main colour of a surface, where a shader offers a colour of its own beside it
  second, third, fourth
            the other colours of a surface
  alpha     the alpha of the colour, as grey
  coverage  the coverage that the shader answers, as grey
  value     the value, as grey; PNG holds 0 to 1, not encoded
  normal    the bent normal of a vector shader or surface, as a normal map: red along U, green along V (or
            down, with --directx), blue away from the surface, in unit length; PNG holds -1 to 1 as 0 to 255
  lit       the colour, or a grey where the shader has none, with the bent normal of a vector shader under a
            lamp: it shines from the upper left, from (-1, 1, 1); what is flat keeps its colour

Examples:
  fernwick bake examples/key.json -o key.png
  fernwick bake examples/key.json --over checker --size 1024x1024 -o key.png
  fernwick bake examples/key.json --output alpha -o mask.exr
  fernwick bake examples/weave-rounded.json --lit -o cloth.png
  fernwick bake examples/weave-rounded.json --output normal --directx -o bump.png)";

struct BakeOptions {
    std::string graph;
    PictureOptions picture;
    std::string library;
    std::string channel = "color";
    std::string over;
    bool isLit = false;
    bool isDirectX = false;
};

std::vector<std::string> ChannelNames()
{
    std::vector<std::string> names;
    for (const fernwick::NamedBakeChannel& channel : fernwick::BakeChannels())
        names.emplace_back(channel.name);
    return names;
}

fernwick::BakeJob JobOf(const BakeOptions& options)
{
    fernwick::BakeJob job;
    ReadSize(options.picture.size, job.width, job.height);
    job.threads = options.picture.threads;
    for (const fernwick::NamedBakeChannel& named : fernwick::BakeChannels())
        if (named.name == options.channel)
            job.channel = named.channel;
    if (options.isLit)
        job.channel = fernwick::BakeChannel::kLit;
    if (options.isDirectX)
        job.green = fernwick::GreenDirection::kDown;
    job.cancel = &WatchForInterrupt();
    return job;
}

/// Bakes with a progress bar. Throws `Interrupted`.
fernwick::Picture BakeShown(fernwick::Library& library, const fernwick::GraphDocument& document,
    fernwick::BakeJob job, ReportSummary& reports, const std::string& label)
{
    ProgressBar bar(label);
    job.onProgress = [&](double share) {
        reports.Forget();
        bar.Show(share);
    };
    std::optional<fernwick::Picture> picture = fernwick::Bake(library, document, job);
    if (!picture)
        throw Interrupted();
    return *std::move(picture);
}

/// The document of what lies under the picture: a source with its defaults, or a graph of its own.
fernwick::GraphDocument ReadGround(const std::string& over)
{
    if (fernwick::FindSource(over) == nullptr)
        return fernwick::GraphDocument::Read(over);
    return fernwick::GraphDocument::Parse(
        fmt::format(R"({{"shaders": {{"ground": {{"source": "{}"}}}}, "output": "ground"}})", over), "");
}

/// Throws `UsageError` when options don't go together.
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

void RunBake(const BakeOptions& options)
{
    RequireSense(options);
    const fernwick::BakeJob job = JobOf(options);
    const fernwick::GraphDocument document = fernwick::GraphDocument::Read(options.graph);
    fernwick::Library library(FindLibrary(options.library));
    ReportSummary reports(library.HostUtilities().Debug());
    fernwick::Picture picture = BakeShown(library, document, job, reports, options.graph);
    if (!options.over.empty()) {
        fernwick::BakeJob groundJob = job;
        if (job.channel == fernwick::BakeChannel::kLit)
            groundJob.channel = fernwick::BakeChannel::kColor; // the lamp is for what lies over it
        picture.LayOver(BakeShown(library, ReadGround(options.over), groundJob, reports, options.over));
    }
    if (*job.cancel)
        throw Interrupted();
    picture.Save(options.picture.file);
}

} // namespace

void AddBakeCommand(CLI::App& app)
{
    const auto options = std::make_shared<BakeOptions>();
    CLI::App& command = *app.add_subcommand("bake", "Shades the UV square with a graph into a picture.");
    command.add_option("graph", options->graph, "The graph of shaders, a JSON file")
        ->required()
        ->type_name("FILE");
    AddPictureOptions(command, options->picture);
    command.add_option("--output", options->channel, "What of the output shader is baked, see below")
        ->type_name("CHANNEL")
        ->check(CLI::IsMember(ChannelNames()).description(""))
        ->capture_default_str();
    command.add_flag("--lit", options->isLit, "Short for --output lit");
    command.add_flag("--directx", options->isDirectX, "Green of a normal map points down (DirectX), not up");
    command
        .add_option("--over", options->over, "Lays the colour, by its alpha, over a source or another graph")
        ->type_name("SOURCE");
    AddLibraryOption(command, options->library);
    command.footer(kFooter);
    command.callback([options] { RunBake(*options); });
}
