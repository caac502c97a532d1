#include "host/threads/Parallel.h"
#include <thread>
#include <vector>

// For the thread sanitizer, to which every hand-over inside TBB and Embree looks like a race, since they aren't built
// with it. Each thread has its share from the start, so that all take part and nothing but the work itself orders them.

namespace fernwick {

void RunParallel(int count, int threads, const std::function<void(int)>& run)
{
    if (threads == 0)
        threads = 4;
    const auto work = [&](int first) {
        for (int i = first; i < count; i += threads)
            run(i);
    };
    std::vector<std::jthread> others;
    for (int i = 1; i < threads; ++i)
        others.emplace_back(work, i);
    work(0);
}

const char* EmbreeSettings() { return "threads=1"; }

} // namespace fernwick
