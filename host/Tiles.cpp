#include "host/Tiles.h"
#include <algorithm>
#include <mutex>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

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
    const int threads = job.threads > 0 ? job.threads : tbb::this_task_arena::max_concurrency();
    const tbb::global_control limit(
        tbb::global_control::max_allowed_parallelism, static_cast<size_t>(threads));
    tbb::task_arena(threads).execute(
        [&] { tbb::parallel_for(0, columns * rows, shadeTile, tbb::simple_partitioner()); });
    return done == columns * rows;
}

} // namespace fernwick
