#include "host/threads/Parallel.h"
#include <condition_variable>
#include <exception>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

// For the thread sanitizer, to which every hand-over inside TBB and Embree looks like a race, since they aren't built
// with it. Each thread has its share from the start, so that all take part and nothing but the work itself orders them.

namespace fernwick {

namespace {

/// The state of a `RunInOrder`; each thread takes the next number whenever it is free.
class Line {
public:
    Line(int count, int most, const std::function<void(int)>& work, const std::function<void(int)>& finish)
        : fCount(count), fMost(most), fWork(work), fFinish(finish)
    { }

    void Run()
    {
        try {
            for (std::unique_lock lock(fMutex); Take(lock);) { }
        } catch (...) {
            const std::lock_guard lock(fMutex);
            if (!fFailure)
                fFailure = std::current_exception();
            fChanged.notify_all();
        }
    }

    std::exception_ptr Failure() const { return fFailure; }

private:
    int fCount;
    int fMost;
    const std::function<void(int)>& fWork;
    const std::function<void(int)>& fFinish;
    std::mutex fMutex;
    std::condition_variable fChanged;
    std::exception_ptr fFailure;
    std::set<int> fDone; // but not finished
    int fBegun = 0;
    int fFinished = 0;
    bool fIsFinishing = false;

    /// Works on one number and finishes what it can.
    /// @return false when there is none left
    bool Take(std::unique_lock<std::mutex>& lock)
    {
        fChanged.wait(lock, [this] { return fFailure || fBegun == fCount || fBegun < fFinished + fMost; });
        if (fFailure || fBegun == fCount)
            return false;
        const int number = fBegun++;
        lock.unlock();
        fWork(number);
        lock.lock();
        fDone.insert(number);
        while (!fIsFinishing && !fFailure && fDone.erase(fFinished) != 0) {
            fIsFinishing = true;
            lock.unlock();
            fFinish(fFinished);
            lock.lock();
            fIsFinishing = false;
            ++fFinished;
            fChanged.notify_all();
        }
        return true;
    }
};

} // namespace

void RunParallel(int count, int threads, const std::function<void(int)>& run)
{
    threads = ThreadCount(threads);
    const auto work = [&](int first) {
        for (int i = first; i < count; i += threads)
            run(i);
    };
    std::vector<std::jthread> others;
    for (int i = 1; i < threads; ++i)
        others.emplace_back(work, i);
    work(0);
}

void RunInOrder(int count, int threads, int most, const std::function<void(int)>& work,
    const std::function<void(int)>& finish)
{
    Line line(count, most, work, finish);
    {
        std::vector<std::jthread> others;
        for (int i = 1; i < ThreadCount(threads); ++i)
            others.emplace_back([&line] { line.Run(); });
        line.Run();
    }
    if (line.Failure())
        std::rethrow_exception(line.Failure());
}

int ThreadCount(int threads) { return threads == 0 ? 4 : threads; }

const char* EmbreeSettings() { return "threads=1"; }

} // namespace fernwick
