#include "tools/BakeOptions.h"
#include "tools/Commands.h"
#include "tools/Interrupt.h"
#include "tools/LibraryOption.h"
#include "tools/Tell.h"

namespace {

constexpr const char* kIntroduction =
    R"(U runs to the right and V up. The square lies from (0, 0, 0) to (1, 1, 0) on the shaded object of the graph's
scene. The colours of a .png aren't multiplied by the alpha; those of an .exr are, unless --straight is given.

)";

constexpr const char* kExamples = R"(

Examples:
  fernwick bake examples/key.json -o key.png
  fernwick bake examples/key.json --over checker --size 1024x1024 -o key.png
  fernwick bake examples/key.json --output alpha -o mask.exr
  fernwick bake examples/weave-rounded.json --lit --samples 4 -o cloth.png
  fernwick bake examples/weave-rounded.json --output normal --directx -o bump.png
  fernwick bake examples/weave-rounded.json --outputs color,normal,alpha -o maps/cloth.{output}.png)";

struct BakeCommandOptions {
    std::string graph;
    std::string library;
    BakeOptions bake;
};

void RunBake(const BakeCommandOptions& options)
{
    RequireSense(options.bake);
    RequireTarget(options.bake);
    WatchForInterrupt();
    const fernwick::GraphDocument document = fernwick::GraphDocument::Read(options.graph);
    TellDoubts(document);
    fernwick::Library library(FindLibrary(options.library));
    ReportSummary reports(library.HostUtilities().Debug());
    BakeToFile(library, reports, document, options.bake, options.graph);
}

} // namespace

void AddBakeCommand(CLI::App& app)
{
    const auto options = std::make_shared<BakeCommandOptions>();
    CLI::App& command = *app.add_subcommand("bake", "Shades the UV square with a graph into a picture.");
    command.add_option("graph", options->graph, "The graph of shaders, a JSON file")
        ->required()
        ->type_name("FILE");
    AddBakeOptions(command, options->bake);
    AddLibraryOption(command, options->library);
    command.footer(std::string(kIntroduction) + kChannelHelp + kExamples);
    command.callback([options] { RunBake(*options); });
}
