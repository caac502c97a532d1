#include "host/documents/GroundDocument.h"
#include "tools/Interrupt.h"
#include "tools/LibraryOption.h"
#include "tools/Outcome.h"
#include "tools/PictureCommands.h"
#include "tools/ReportSummary.h"
#include "tools/Tell.h"
#include "tools/pictures/BakeToFile.h"
#include "tools/pictures/PictureDoubts.h"
#include "tools/pictures/PictureJob.h"
#include "tools/pictures/SampleReport.h"
#include "tools/pictures/ShadeDocument.h"
#include "tools/pictures/ShownJob.h"

namespace {

constexpr int kSamples = 9; // a pixel

void PrintStatisticsOf(
    fernwick::Library& library, const fernwick::GraphDocument& document, const fernwick::BakeJob& job)
{
    PrintStatistics(library, document, job.width, job.height, [&] {
        if (*job.cancel)
            throw Interrupted();
    });
}

/// Throws `UsageError` when options don't go together.
void RequireShadeSense(const ShadeOptions& options)
{
    if (options.bake.picture.file.empty() && options.sample.empty() && !options.withStatistics)
        throw UsageError("there is nothing to do; give --picture, --print or --stats");
    RequireSense(options.bake);
    if (options.settings.shape == fernwick::kUVSquareShape) {
        if (options.bake.picture.layers != std::vector<std::string>{"none"})
            throw UsageError("--layers is for a shape that is rendered; it doesn't go with --on uv");
        return;
    }
    if (!options.sample.empty() || options.withStatistics)
        throw UsageError("--print and --stats shade the UV square; they go with --on uv");
    if (options.bake.channels != std::vector<std::string>{"color"} || options.bake.isDirectX
        || !options.bake.over.empty() || options.bake.samples != 1)
        throw UsageError(
            "--output, --directx, --over and --samples are for the UV square; they go with --on uv. An "
            ".exr of a shape holds the channels of --layers");
}

void RenderToFile(
    fernwick::Library& library, const fernwick::GraphDocument& document, const ShadeOptions& options)
{
    const PictureOptions& picture = options.bake.picture;
    fernwick::RenderJob job = RenderJobOf(picture, kSamples);
    const fernwick::Picture rendered
        = RunShown(job, options.settings.name, [&] { return fernwick::Render(library, document, job); });
    const PictureDoubts doubts(rendered);
    doubts.TellEmptySlots(document);
    doubts.TellOddNumbers(picture.file, picture.layout);
    rendered.Save(picture.file, picture.layout, picture.threads);
}

} // namespace

void RunShade(const ShadeOptions& options)
{
    RequireShadeSense(options);
    RequireTarget(options.bake);
    const fernwick::BakeJob job = JobOf(options.bake);
    ShadeSettings settings = options.settings;
    settings.isLit = options.bake.isLit;
    const fernwick::GraphDocument document = MakeShadeDocument(settings);
    for (const std::string& notice : document.Scene()->fNotices)
        Tell(notice);
    TellDoubts(document.Doubts());
    fernwick::Library library(FindLibrary(options.library));
    const ReportSummary reports(library.HostUtilities().Debug());
    if (!options.sample.empty()) {
        const TVector2 uv = *ReadSample(options.sample);
        PrintSample(library, document, uv[0], uv[1]);
    }
    if (options.withStatistics)
        PrintStatisticsOf(library, document, job);
    if (options.bake.picture.file.empty())
        return;
    std::optional<fernwick::GraphDocument> ground;
    if (!options.bake.over.empty())
        ground = MakeGround(fernwick::ReadGround(options.bake.over))->At(fernwick::kFirstFrame);
    if (options.settings.shape != fernwick::kUVSquareShape)
        RenderToFile(library, document, options);
    else
        BakeToFile(library, document, ground ? &*ground : nullptr, options.bake, options.settings.name);
}
