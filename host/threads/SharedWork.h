#pragma once
#include <atomic>
#include <exception>
#include <functional>
#include <mutex>

namespace fernwick {

/// Work that whoever needs its outcome takes part in. Threads that wait for each other's work could not help with it
/// by `RunParallel`, since each is still at work of its own.
class SharedWork {
public:
    /// @param run  is called once with each number from 0 up to `count`, several at a time
    SharedWork(int count, std::function<void(int)> run);

    /// Takes part and returns when all is done; what was done before it costs nothing. What any `run` threw is thrown
    /// to all.
    void Finish();

private:
    int fCount;
    std::function<void(int)> fRun;
    std::atomic<int> fNext = 0; // not yet taken
    std::atomic<int> fLeft;     // not yet done
    std::mutex fMutex;
    std::exception_ptr fFailure;

    bool Take();
};

} // namespace fernwick
