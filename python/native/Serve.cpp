#include "python/native/Serve.h"
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace py = pybind11;

namespace {

/// Of the work that this thread does; null for none.
thread_local const Control* gControl = nullptr;

constexpr std::chrono::milliseconds kBetweenQuestions{20};

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
        const py::gil_scoped_release released;
        std::mutex mutex;
        std::condition_variable ended;
        bool isDone = false;
        std::thread worker([&] {
            gControl = &control;
            try {
                work(control);
            } catch (...) {
                failure = std::current_exception();
            }
            const std::lock_guard lock(mutex);
            isDone = true;
            ended.notify_one();
        });
        for (std::unique_lock lock(mutex);
             !ended.wait_for(lock, kBetweenQuestions, [&] { return isDone; });) {
            lock.unlock();
            if (!interruption) {
                const py::gil_scoped_acquire acquired;
                try {
                    Attend(progress, control.fShare, told);
                } catch (...) {
                    interruption = std::current_exception();
                    control.fCancel = true;
                }
            }
            lock.lock();
        }
        worker.join();
    }
    if (interruption)
        std::rethrow_exception(interruption);
    if (failure)
        std::rethrow_exception(failure);
    Attend(progress, 1, told);
}
