#include "tools/BakeOnto.h"
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
  fernwick bake examples/ripple-sequence.json --frames 1-24 -o ripple.####.png
  fernwick bake examples/cushion.json --onto examples/cushion.obj --outputs color,normal -o cushion.{output}.png \
      --gltf cushion.glb)";

struct BakeCommandOptions {
    GraphOptions graph;
    std::string library;
    BakeOptions bake;
    OntoOptions onto;
};

void RunBake(const BakeCommandOptions& options)
{
    RequireSense(options.bake);
    RequireSense(options.onto, options.bake);
    const std::vector<Shot> shots = ShotsOf(options.graph, options.bake.picture.file);
    if (shots.size() > 1 && !options.onto.gltf.empty())
        throw UsageError("--gltf writes a model of one frame; it doesn't go with several");
    const auto optionsOf = [&options](const Shot& shot) {
        BakeOptions bake = options.bake;
        bake.picture.file = shot.file;
        return bake;
    };
    if (options.onto.onto.empty())
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
        const fernwick::GraphDocument* const laidUnder = under ? &*under : nullptr;
        if (options.onto.onto.empty())
            BakeToFile(library, reports, document, laidUnder, optionsOf(shot), shot.label, shot.isFirst);
        else
            BakeOntoModel(library, reports, document, laidUnder, options.onto, optionsOf(shot), shot.label,
                shot.isFirst);
    });
}

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
    command.footer(std::string(kIntroduction) + kFramesHelp + "\n\n" + kChannelHelp + kOntoHelp + kExamples);
    command.callback([options] { RunBake(*options); });
}
