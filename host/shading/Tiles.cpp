#include "host/shading/Tiles.h"
#include "host/threads/Parallel.h"
#include <algorithm>
#include <mutex>

namespace fernwick {

namespace {

std::mutex gGraphMutex;

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

OwnGraph MakeGraph(const Library& library, const GraphDocument& document, const MCCountedPtr<Scene>& scene)
{
    const std::lock_guard lock(gGraphMutex);
    return OwnGraph(new Graph(library, document, scene));
}

bool ForEachTile(const TileJob& job, const std::function<void(const Tile&)>& shade)
{
    const int columns = (job.width - 1) / job.side + 1;
    const int rows = (job.height - 1) / job.side + 1;
    const auto isCancelled = [&job] { return job.cancel != nullptr && *job.cancel; };
    std::mutex progressMutex;
    int done = 0;
    const auto shadeTile = [&](int tile) {
        if (isCancelled())
            return;
        const int left = tile % columns * job.side;
        const int top = tile / columns * job.side;
        shade({left, top, std::min(left + job.side, job.width), std::min(top + job.side, job.height)});
        const std::lock_guard lock(progressMutex);
        ++done;
        if (job.onProgress)
            job.onProgress(static_cast<double>(done) / (columns * rows));
    };
    RunParallel(columns * rows, std::max(job.threads, 0), shadeTile);
    return done == columns * rows;
}

} // namespace fernwick
