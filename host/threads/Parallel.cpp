#include "host/threads/Parallel.h"
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>
#include <vector>

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

/// An arena for so many threads, for as long as this lives. TBB keeps some kilobytes of each that there ever was, so they
/// are used again.
class LentArena {
public:
    explicit LentArena(int threads) : fThreads(threads)
    {
        const std::lock_guard lock(gMutex);
        std::vector<Arena>& idle = Idle()[threads];
        if (idle.empty())
            idle.push_back(std::make_unique<tbb::task_arena>(threads));
        fArena = std::move(idle.back());
        idle.pop_back();
    }
    ~LentArena()
    {
        const std::lock_guard lock(gMutex);
        Idle()[fThreads].push_back(std::move(fArena));
    }
    LentArena(const LentArena&) = delete;
    LentArena& operator=(const LentArena&) = delete;

    tbb::task_arena& operator*() const { return *fArena; }

private:
    using Arena = std::unique_ptr<tbb::task_arena>;

    static inline std::mutex gMutex;
    int fThreads;
    Arena fArena;

    /// By number of threads; they live as long as the process.
    static std::map<int, std::vector<Arena>>& Idle()
    {
        static auto* const idle = new std::map<int, std::vector<Arena>>;
        return *idle;
    }
};

template <class Work> void RunInArena(int threads, const Work& work)
{
    const int count = ThreadCount(threads);
    // Jobs beside this one would have as few threads; only more than usual have to be allowed.
    std::optional<tbb::global_control> limit;
    if (count > tbb::info::default_concurrency())
        limit.emplace(tbb::global_control::max_allowed_parallelism, static_cast<size_t>(count));
    (*LentArena(count)).execute(work);
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
