#include "python/native/Serve.h"
#include <chrono>
#include <condition_variable>
#include <cxxabi.h>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <unistd.h>
#include <vector>

namespace py = pybind11;

namespace {

/// Of the work that this thread does; null for none.
thread_local const Control* gControl = nullptr;

constexpr std::chrono::milliseconds kBetweenQuestions{20};

/// A thread that works for one caller after the other. It ends with the process.
class Worker {
public:
    Worker()
    {
        std::thread([this] { Run(); }).detach();
    }

    /// @param work  throws nothing
    void Start(std::function<void()> work)
    {
        const std::lock_guard lock(fMutex);
        fWork = std::move(work);
        fChanged.notify_all();
    }

    bool IsDoneAfter(std::chrono::milliseconds time)
    {
        std::unique_lock lock(fMutex);
        return fChanged.wait_for(lock, time, [this] { return !fWork; });
    }

private:
    std::mutex fMutex;
    std::condition_variable fChanged;
    std::function<void()> fWork; // empty when it is done

    [[noreturn]] void Run()
    {
        for (std::unique_lock lock(fMutex);;) {
            fChanged.wait(lock, [this] { return static_cast<bool>(fWork); });
            lock.unlock();
            fWork();
            lock.lock();
            fWork = nullptr;
            fChanged.notify_all();
        }
    }
};

/// The workers that nobody needs just now. Embree keeps some bytes for each thread that ever called it, so threads are
/// used again; a process that was forked has none of them.
struct IdleWorkers {
    std::mutex mutex;
    pid_t process = getpid();
    std::vector<Worker*> workers; // that live as long as the process
};

/// A worker for as long as this lives.
class Lent {
public:
    Lent()
    {
        IdleWorkers& idle = Idle();
        const std::lock_guard lock(idle.mutex);
        if (idle.process != getpid()) {
            idle.workers.clear();
            idle.process = getpid();
        }
        if (idle.workers.empty())
            idle.workers.push_back(new Worker);
        fWorker = idle.workers.back();
        idle.workers.pop_back();
    }
    ~Lent()
    {
        IdleWorkers& idle = Idle();
        const std::lock_guard lock(idle.mutex);
        idle.workers.push_back(fWorker);
    }
    Lent(const Lent&) = delete;
    Lent& operator=(const Lent&) = delete;

    Worker* operator->() const { return fWorker; }

private:
    Worker* fWorker;

    static IdleWorkers& Idle()
    {
        static auto* const idle = new IdleWorkers;
        return *idle;
    }
};

/// This thread without the interpreter's lock, for as long as this lives.
class Unlocked {
public:
    Unlocked() { Unlock(); }
    ~Unlocked() { Lock(); }
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

    void Unlock() { fState = PyEval_SaveThread(); }

    /// An interpreter that ends ends each other thread that asks for its lock, by unwinding it, which no destructor
    /// bears. Such a thread waits here for the end of the process.
    void Lock()
    {
        try {
            PyEval_RestoreThread(fState);
        } catch (const abi::__forced_unwind&) {
            for (;;)
                pause();
        }
    }

private:
    PyThreadState* fState;
};

/// Lets Python do what waits for it: handlers of signals, and who wants to know how far the work is.
void Attend(const py::object& progress, double share, double& told)
{
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
    if (progress.is_none() || share <= told)
        return;
    told = share;
    progress(share);
}

} // namespace

void ThrowIfCancelled()
{
    if (gControl != nullptr && gControl->fCancel)
        throw std::runtime_error("cancelled");
}

void Serve(const py::object& progress, const std::function<void(Control&)>& work)
{
    Control control;
    std::exception_ptr failure;
    std::exception_ptr interruption;
    double told = 0;
    {
        Unlocked unlocked;
        Lent worker;
        worker->Start([&] {
            gControl = &control;
            try {
                work(control);
            } catch (...) {
                failure = std::current_exception();
            }
            gControl = nullptr;
        });
        while (!worker->IsDoneAfter(kBetweenQuestions)) {
            if (interruption)
                continue;
            unlocked.Lock();
            try {
                Attend(progress, control.fShare, told);
            } catch (...) {
                interruption = std::current_exception();
                control.fCancel = true;
            }
            unlocked.Unlock();
        }
    }
    if (interruption)
        std::rethrow_exception(interruption);
    if (failure)
        std::rethrow_exception(failure);
    Attend(progress, 1, told);
}
