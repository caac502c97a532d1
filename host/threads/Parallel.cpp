#include "host/threads/Parallel.h"
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>

namespace fernwick {

namespace {

/// Whether this thread is in a finish of `RunInOrder`.
thread_local bool gIsFinishing = false;

class Finishing {
public:
    Finishing() { gIsFinishing = true; }
    ~Finishing() { gIsFinishing = false; }
    Finishing(const Finishing&) = delete;
    Finishing& operator=(const Finishing&) = delete;
};

template <class Work> void RunInArena(int threads, const Work& work)
{
    const int count = ThreadCount(threads);
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, static_cast<size_t>(count));
    tbb::task_arena(count).execute(work);
}

} // namespace

void RunParallel(int count, int threads, const std::function<void(int)>& run)
{
    const auto runAll = [&] { tbb::parallel_for(0, count, run, tbb::simple_partitioner()); };
    // In an arena of its own a finish would wait for threads that wait for it in theirs. It takes no other work
    // meanwhile, since all wait for it when they are as far ahead as they may be.
    if (gIsFinishing)
        tbb::this_task_arena::isolate(runAll);
    else
        RunInArena(threads, runAll);
}

void RunInOrder(int count, int threads, int most, const std::function<void(int)>& work,
    const std::function<void(int)>& finish)
{
    int next = 0;
    const auto begin
        = tbb::make_filter<void, int>(tbb::filter_mode::serial_in_order, [&](tbb::flow_control& flow) {
              if (next == count)
                  flow.stop();
              return next == count ? 0 : next++;
          });
    const auto middle = tbb::make_filter<int, int>(tbb::filter_mode::parallel, [&](int number) {
        work(number);
        return number;
    });
    const auto end = tbb::make_filter<int, void>(tbb::filter_mode::serial_in_order, [&](int number) {
        const Finishing guard;
        finish(number);
    });
    RunInArena(threads, [&] { tbb::parallel_pipeline(static_cast<size_t>(most), begin & middle & end); });
}

int ThreadCount(int threads) { return threads == 0 ? tbb::this_task_arena::max_concurrency() : threads; }

const char* EmbreeSettings() { return nullptr; }

} // namespace fernwick
