#include "host/library/Library.h"
#include "host/pictures/Strip.h"
#include "tools/LibraryOption.h"
#include "tools/Outcome.h"
#include "tools/PictureCommands.h"
#include "tools/ReportSummary.h"
#include "tools/Tell.h"
#include "tools/pictures/PictureDoubts.h"
#include "tools/pictures/PictureJob.h"
#include "tools/pictures/Shots.h"
#include "tools/pictures/ShownJob.h"
#include <fmt/format.h>

namespace {

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
    TellDoubts(document.Doubts());
}

} // namespace

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
    const ReportSummary reports(library.HostUtilities().Debug());
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
            = RunShown(job, shot.label, [&] { return fernwick::Render(library, document, job); });
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
