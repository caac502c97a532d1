#include "tools/BakeOptions.h"
#include "tools/Commands.h"
#include "tools/GraphOptions.h"
#include "tools/GroundDocument.h"
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
  fernwick bake examples/weave-rounded.json --outputs color,normal,alpha -o maps/cloth.{output}.png
  fernwick bake examples/drip-ripple.json --set fWaves=9 --output value -o ripple.png
  fernwick bake examples/ripple-sequence.json --frames 1-24 -o ripple.####.png)";

struct BakeCommandOptions {
    GraphOptions graph;
    std::string library;
    BakeOptions bake;
};

void RunBake(const BakeCommandOptions& options)
{
    RequireSense(options.bake);
    const std::vector<Shot> shots = ShotsOf(options.graph, options.bake.picture.file);
    const auto optionsOf = [&options](const Shot& shot) {
        BakeOptions bake = options.bake;
        bake.picture.file = shot.file;
        return bake;
    };
    for (const Shot& shot : shots)
        RequireTarget(optionsOf(shot));
    WatchForInterrupt();
    const auto graph = OpenGraph(options.graph);
    const auto ground = options.bake.over.empty() ? nullptr : MakeGround(options.bake.over);
    TellAlike(shots, graph->HasKeys() || (ground && ground->HasKeys()));
    fernwick::Library library(FindLibrary(options.library));
    ReportSummary reports(library.HostUtilities().Debug());
    ForEachShot(shots, [&](const Shot& shot) {
        const fernwick::GraphDocument document = graph->At(shot.frame);
        if (shot.isFirst)
            TellDoubts(document);
        std::optional<fernwick::GraphDocument> under;
        if (ground)
            under = ground->At(shot.frame);
        BakeToFile(
            library, reports, document, under ? &*under : nullptr, optionsOf(shot), shot.label, shot.isFirst);
    });
}

} // namespace

void AddBakeCommand(CLI::App& app)
{
    const auto options = std::make_shared<BakeCommandOptions>();
    CLI::App& command = *app.add_subcommand("bake", "Shades the UV square with a graph into a picture.");
    AddGraphOptions(command, options->graph);
    AddBakeOptions(command, options->bake);
    AddLibraryOption(command, options->library);
    command.footer(std::string(kIntroduction) + kFramesHelp + "\n\n" + kChannelHelp + kExamples);
    command.callback([options] { RunBake(*options); });
}
