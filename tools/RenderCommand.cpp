#include "tools/Checks.h"
#include "tools/Commands.h"
#include "tools/LibraryOption.h"
#include "tools/PictureCommands.h"

namespace {

constexpr const char* kRenderIntroduction =
    R"(The scene of the graph says what there is: a file, shapes, lights and cameras, and which element gets which
shader; elements without one get the output. Colours are shown as they are, or, on elements whose shading is "lit",
under a lamp beside the camera. What lies behind a surface shows by its alpha.

An .exr holds the picture, its colours multiplied by the alpha. With --layers it holds channels of the surfaces too, such
as second.R or normal.X.

)";

constexpr const char* kRenderExamples = R"(

Examples:
  fernwick render examples/spot-room.json -o room.png
  fernwick render examples/spot-room.json --camera Side --size 640x480 --samples 16 -o room.exr
  fernwick render examples/spot-room.json --layers normal,second --bits 16 -o layers.exr
  fernwick render examples/spot-room.json --size 8192x8192 --region 0,0,8192,1024 -o top.exr
  fernwick render examples/ripple-sequence.json --frames 1-24 -o ripple.####.png)";

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
    command.footer(std::string(kRenderIntroduction) + kFramesHelp + kRenderExamples);
    command.callback([options] { RunRender(*options); });
}
