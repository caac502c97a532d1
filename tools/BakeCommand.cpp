#include "tools/Commands.h"
#include "tools/LibraryOption.h"
#include "tools/PictureCommands.h"

namespace {

constexpr const char* kBakeIntroduction =
    R"(U runs to the right and V up. The square lies from (0, 0, 0) to (1, 1, 0) on the shaded object of the graph's
scene. The colours of a .png aren't multiplied by the alpha; those of an .exr are, unless --straight is given.

)";

constexpr const char* kBakeExamples = R"(

Examples:
  fernwick bake examples/key.json -o key.png
  fernwick bake examples/key.json --over checker --size 1024x1024 -o key.png
  fernwick bake examples/key.json --output alpha -o mask.exr
  fernwick bake examples/weave-rounded.json --lit --samples 4 -o cloth.png
  fernwick bake examples/weave-rounded.json --output normal --directx -o bump.png
  fernwick bake examples/weave-rounded.json --outputs color,normal,alpha -o maps/cloth.{output}.png
  fernwick bake examples/drip-ripple.json --set fWaves=9 --output value -o ripple.png
  fernwick bake examples/ripple-sequence.json --frames 1-24 -o ripple.####.png
  fernwick bake examples/cushion.json --onto examples/cushion.obj --outputs color,normal -o cushion.{output}.png \
      --gltf cushion.glb)";

} // namespace

void AddBakeCommand(CLI::App& app)
{
    const auto options = std::make_shared<BakeCommandOptions>();
    CLI::App& command
        = *app.add_subcommand("bake", "Shades the UV square, or a model, with a graph into a picture.");
    AddGraphOptions(command, options->graph);
    AddBakeOptions(command, options->bake);
    AddOntoOptions(command, options->onto);
    AddLibraryOption(command, options->library);
    command.footer(
        std::string(kBakeIntroduction) + kFramesHelp + "\n\n" + kChannelHelp + kOntoHelp + kBakeExamples);
    command.callback([options] { RunBake(*options); });
}
