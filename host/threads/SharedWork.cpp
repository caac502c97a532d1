#include "host/threads/SharedWork.h"
#include "host/threads/Parallel.h"
#include <utility>

namespace fernwick {

SharedWork::SharedWork(int count, std::function<void(int)> run)
    : fCount(count), fRun(std::move(run)), fLeft(count)
{ }

void SharedWork::Finish()
{
    // Who comes first brings the threads that are free; who comes later was not.
    if (fLeft.load() > 0 && fNext.load() == 0)
        RunParallel(fCount, 0, [this](int) { Take(); });
    while (Take()) { }
    for (int left = fLeft.load(); left > 0; left = fLeft.load())
        fLeft.wait(left);
    if (fFailure)
        std::rethrow_exception(fFailure);
}

/// Does the next number.
/// @return false when none is left
bool SharedWork::Take()
{
    if (fNext.load() >= fCount)
        return false;
    const int number = fNext.fetch_add(1);
    if (number >= fCount)
        return false;
    try {
        fRun(number);
    } catch (...) {
        const std::lock_guard lock(fMutex);
        if (!fFailure)
            fFailure = std::current_exception();
    }
    if (fLeft.fetch_sub(1) == 1)
        fLeft.notify_all();
    return true;
}

} // namespace fernwick
