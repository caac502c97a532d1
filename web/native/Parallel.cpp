#include "host/threads/Parallel.h"

// An instance of the engine has one thread; the page has several instances.

namespace fernwick {

void RunParallel(int count, int, const std::function<void(int)>& run)
{
    for (int i = 0; i < count; ++i)
        run(i);
}

void RunInOrder(
    int count, int, int, const std::function<void(int)>& work, const std::function<void(int)>& finish)
{
    for (int i = 0; i < count; ++i) {
        work(i);
        finish(i);
    }
}

int ThreadCount(int) { return 1; }

const char* EmbreeSettings() { return nullptr; }

} // namespace fernwick
