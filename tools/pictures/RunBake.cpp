#include "host/documents/GroundDocument.h"
#include "tools/Interrupt.h"
#include "tools/LibraryOption.h"
#include "tools/Outcome.h"
#include "tools/PictureCommands.h"
#include "tools/ReportSummary.h"
#include "tools/Tell.h"
#include "tools/pictures/BakeOnto.h"
#include "tools/pictures/Shots.h"

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
    const auto ground
        = options.bake.over.empty() ? nullptr : MakeGround(fernwick::ReadGround(options.bake.over));
    TellAlike(shots, graph->HasKeys() || (ground && ground->HasKeys()));
    fernwick::Library library(FindLibrary(options.library));
    const ReportSummary reports(library.HostUtilities().Debug());
    fernwick::DocumentFiles models;
    ForEachShot(shots, [&](const Shot& shot) {
        models.BeginFrame();
        const fernwick::GraphDocument document = graph->At(shot.frame);
        if (shot.isFirst)
            TellDoubts(document.Doubts());
        std::optional<fernwick::GraphDocument> under;
        if (ground)
            under = ground->At(shot.frame);
        const fernwick::GraphDocument* const laidUnder = under ? &*under : nullptr;
        if (options.onto.onto.empty())
            BakeToFile(library, document, laidUnder, optionsOf(shot), shot.label, shot.isFirst);
        else
            BakeOntoModel(library, document, models, laidUnder, options.onto, optionsOf(shot), shot.label,
                shot.isFirst);
    });
}
