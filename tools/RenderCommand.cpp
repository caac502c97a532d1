#include "host/library/Library.h"
#include "host/pictures/Strip.h"
#include "tools/Checks.h"
#include "tools/Commands.h"
#include "tools/GraphOptions.h"
#include "tools/LibraryOption.h"
#include "tools/PictureDoubts.h"
#include "tools/PictureOptions.h"
#include "tools/ShownJob.h"
#include "tools/Tell.h"
#include <fmt/format.h>

namespace {

constexpr const char* kIntroduction =
    R"(The scene of the graph says what there is: a file, shapes, lights and cameras, and which element gets which
shader; elements without one get the output. Colours are shown as they are, or, on elements whose shading is "lit",
under a lamp beside the camera. What lies behind a surface shows by its alpha.

An .exr holds the picture, its colours multiplied by the alpha. With --layers it holds channels of the surfaces too, such
as second.R or normal.X.

)";

constexpr const char* kExamples = R"(

Examples:
  fernwick render examples/spot-room.json -o room.png
  fernwick render examples/spot-room.json --camera Side --size 640x480 --samples 16 -o room.exr
  fernwick render examples/spot-room.json --layers normal,second --bits 16 -o layers.exr
  fernwick render examples/spot-room.json --size 8192x8192 --region 0,0,8192,1024 -o top.exr
  fernwick render examples/ripple-sequence.json --frames 1-24 -o ripple.####.png)";

struct RenderOptions {
    GraphOptions graph;
    bool isStrip = false;
    PictureOptions picture;
    std::string camera;
    int samples = 9;
    std::string library;
};

/// Throws when all frames side by side are wider than a picture can be.
void RequireStrip(const PictureOptions& picture, size_t count)
{
    int width = 0;
    int height = 0;
    ReadSize(picture.size, width, height);
    const size_t sum = count * static_cast<size_t>(width);
    if (!ReadSize(fmt::format("{}x{}", sum, height), width, height))
        throw UsageError(fmt::format(
            "--strip: {} frames side by side are {} pixels wide, which no picture is", count, sum));
    if (picture.layers != std::vector<std::string>{"none"})
        throw UsageError("--strip: a strip has no layers; leave --layers out");
}

void TellBeforeWork(const fernwick::GraphDocument& document)
{
    if (document.Scene())
        for (const std::string& notice : document.Scene()->fNotices)
            Tell(notice);
    TellDoubts(document);
}

void RunRender(const RenderOptions& options)
{
    const bool isStrip = options.isStrip;
    const PictureOptions& picture = options.picture;
    const std::vector<Shot> shots = ShotsOf(options.graph, picture.file, isStrip);
    if (isStrip)
        RequireStrip(picture, shots.size());
    for (const Shot& shot : shots) {
        PictureOptions target = picture;
        target.file = shot.file;
        RequireTarget(target);
    }
    fernwick::RenderJob job = RenderJobOf(picture, options.samples);
    job.camera = options.camera;
    const auto graph = OpenGraph(options.graph);
    TellAlike(shots, graph->HasKeys());
    fernwick::Library library(FindLibrary(options.library));
    ReportSummary reports(library.HostUtilities().Debug());
    const auto save
        = [&picture](const fernwick::Picture& made, const PictureDoubts& doubts, const std::string& file) {
              doubts.TellOddNumbers(file, picture.layout);
              made.Save(file, picture.layout, picture.threads);
          };
    std::vector<fernwick::Picture> strip;
    ForEachShot(shots, [&](const Shot& shot) {
        const fernwick::GraphDocument document = graph->At(shot.frame);
        if (shot.isFirst)
            TellBeforeWork(document);
        fernwick::Picture made
            = RunShown(job, reports, shot.label, [&] { return fernwick::Render(library, document, job); });
        const PictureDoubts doubts(made);
        if (shot.isFirst)
            doubts.TellEmptySlots(document);
        if (isStrip)
            strip.push_back(std::move(made));
        else
            save(made, doubts, shot.file);
    });
    if (isStrip) {
        const fernwick::Picture whole = fernwick::SideBySide(strip);
        save(whole, PictureDoubts(whole), picture.file);
    }
}

} // namespace

void AddRenderCommand(CLI::App& app)
{
    const auto options = std::make_shared<RenderOptions>();
    CLI::App& command = *app.add_subcommand("render", "Renders the scene of a graph into a picture.");
    AddGraphOptions(command, options->graph);
    command.add_flag("--strip", options->isStrip, "Puts all frames side by side in one picture")
        ->needs("--frames");
    AddPictureOptions(command, options->picture);
    AddLayersOption(command, options->picture);
    command
        .add_option("--camera", options->camera,
            "The camera to render from (else the graph's, else the first of the scene)")
        ->type_name("NAME");
    command.add_option("--samples", options->samples, "Samples a pixel")
        ->type_name("N")
        ->check(WholeNumber(1, kMostSamples))
        ->capture_default_str();
    AddLibraryOption(command, options->library);
    command.footer(std::string(kIntroduction) + kFramesHelp + kExamples);
    command.callback([options] { RunRender(*options); });
}
