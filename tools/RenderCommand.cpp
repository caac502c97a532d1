#include "host/documents/GraphDocument.h"
#include "host/library/Library.h"
#include "tools/Commands.h"
#include "tools/LibraryOption.h"
#include "tools/PictureDoubts.h"
#include "tools/PictureOptions.h"
#include "tools/ShownJob.h"
#include "tools/Tell.h"

namespace {

constexpr int kMostSamples = 4096;

constexpr const char* kFooter =
    R"(The scene of the graph says what there is: a file, shapes, lights and cameras, and which element gets which
shader; elements without one get the output. Colours are shown as they are, or, on elements whose shading is "lit",
under a lamp beside the camera. What lies behind a surface shows by its alpha.

An .exr holds the picture, its colours multiplied by the alpha. With --layers it holds channels of the surfaces too, such
as second.R or normal.X.

Examples:
  fernwick render examples/spot-room.json -o room.png
  fernwick render examples/spot-room.json --camera Side --size 640x480 --samples 16 -o room.exr
  fernwick render examples/spot-room.json --layers normal,second --bits 16 -o layers.exr
  fernwick render examples/spot-room.json --size 8192x8192 --region 0,0,8192,1024 -o top.exr)";

struct RenderOptions {
    std::string graph;
    PictureOptions picture;
    std::string camera;
    int samples = 9;
    std::string library;
};

void RunRender(const RenderOptions& options)
{
    RequireTarget(options.picture);
    fernwick::RenderJob job = RenderJobOf(options.picture, options.samples);
    job.camera = options.camera;
    const fernwick::GraphDocument document = fernwick::GraphDocument::Read(options.graph);
    if (document.Scene())
        for (const std::string& notice : document.Scene()->fNotices)
            Tell(notice);
    TellDoubts(document);
    fernwick::Library library(FindLibrary(options.library));
    ReportSummary reports(library.HostUtilities().Debug());
    const fernwick::Picture picture
        = RunShown(job, reports, options.graph, [&] { return fernwick::Render(library, document, job); });
    const PictureDoubts doubts(picture);
    doubts.TellEmptySlots(document);
    doubts.TellOddNumbers(options.picture.file, options.picture.layout);
    picture.Save(options.picture.file, options.picture.layout, options.picture.threads);
}

} // namespace

void AddRenderCommand(CLI::App& app)
{
    const auto options = std::make_shared<RenderOptions>();
    CLI::App& command = *app.add_subcommand("render", "Renders the scene of a graph into a picture.");
    command.add_option("graph", options->graph, "The graph of shaders with a scene, a JSON file")
        ->required()
        ->type_name("FILE");
    AddPictureOptions(command, options->picture);
    AddLayersOption(command, options->picture);
    command
        .add_option("--camera", options->camera,
            "The camera to render from (else the graph's, else the first of the scene)")
        ->type_name("NAME");
    command.add_option("--samples", options->samples, "Samples a pixel")
        ->type_name("N")
        ->check(CLI::Range(1, kMostSamples).description(""))
        ->capture_default_str();
    AddLibraryOption(command, options->library);
    command.footer(kFooter);
    command.callback([options] { RunRender(*options); });
}
