#include "host/shading/Tiles.h"
#include "host/threads/Parallel.h"
#include <algorithm>

namespace fernwick {

namespace {

std::mutex gGraphMutex;

/// The tiles of a job while they are shaded.
class TileRun {
public:
    TileRun(const TileJob& job, const ShadeTileFunction& shade) : fJob(job), fShade(shade)
    {
        const Tile region = job.region.value_or(Tile{0, 0, job.width, job.height});
        fFirstColumn = region.fLeft / job.side;
        fFirstRow = region.fTop / job.side;
        fColumns = (region.fRight - 1) / job.side + 1 - fFirstColumn;
        fRows = (region.fBottom - 1) / job.side + 1 - fFirstRow;
    }

    int Count() const { return fColumns * fRows; }
    bool IsDone() const { return fDone == Count(); }
    bool IsCut() const { return fIsCut; } ///< a tile was left out

    Tile TileAt(int number) const
    {
        const int left = (fFirstColumn + number % fColumns) * fJob.side;
        const int top = (fFirstRow + number / fColumns) * fJob.side;
        return {left, top, std::min(left + fJob.side, fJob.width), std::min(top + fJob.side, fJob.height)};
    }

    void Shade(int number)
    {
        if (IsCancelled(fJob.cancel) || !fShade(TileAt(number))) {
            fIsCut = true;
            return;
        }
        const std::lock_guard lock(fMutex);
        ++fDone;
        if (fJob.onProgress)
            fJob.onProgress(static_cast<double>(fDone) / Count());
    }

private:
    const TileJob& fJob;
    const ShadeTileFunction& fShade;
    int fFirstColumn;
    int fFirstRow;
    int fColumns;
    int fRows;
    std::atomic<bool> fIsCut{false};
    std::mutex fMutex;
    int fDone = 0;
};

} // namespace

void GraphRelease::operator()(Graph* graph) const
{
    const std::lock_guard lock(gGraphMutex);
    delete graph;
}

OwnGraph MakeGraph(const Library& library, const GraphDocument& document)
{
    const std::lock_guard lock(gGraphMutex);
    return OwnGraph(new Graph(library, document));
}

OwnGraph MakeGraph(const Library& library, const GraphDocument& document, const MCCountedPtr<Scene>& scene,
    const std::vector<bool>& needed)
{
    const std::lock_guard lock(gGraphMutex);
    return OwnGraph(new Graph(library, document, scene, needed));
}

std::unique_lock<std::mutex> LockGraphs() { return std::unique_lock(gGraphMutex); }

bool ForEachTile(const TileJob& job, const ShadeTileFunction& shade)
{
    TileRun run(job, shade);
    RunParallel(run.Count(), std::max(job.threads, 0), [&run](int number) { run.Shade(number); });
    return run.IsDone();
}

bool ForEachTileInOrder(const TileJob& job, int most, const ShadeTileFunction& shade,
    const std::function<void(const Tile&)>& finish)
{
    TileRun run(job, shade);
    RunInOrder(
        run.Count(), std::max(job.threads, 0), most, [&run](int number) { run.Shade(number); },
        [&](int number) {
            if (!run.IsCut())
                finish(run.TileAt(number));
        });
    return run.IsDone();
}

} // namespace fernwick
