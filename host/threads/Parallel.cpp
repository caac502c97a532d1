#include "host/threads/Parallel.h"
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

namespace fernwick {

void RunParallel(int count, int threads, const std::function<void(int)>& run)
{
    if (threads == 0)
        threads = tbb::this_task_arena::max_concurrency();
    const tbb::global_control limit(
        tbb::global_control::max_allowed_parallelism, static_cast<size_t>(threads));
    tbb::task_arena(threads).execute([&] { tbb::parallel_for(0, count, run, tbb::simple_partitioner()); });
}

const char* EmbreeSettings() { return nullptr; }

} // namespace fernwick
