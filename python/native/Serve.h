#pragma once
#include <atomic>
#include <functional>
#include <pybind11/pybind11.h>

/// What work that runs beside Python is told, and tells.
struct Control {
    std::atomic<bool> fCancel{false};
    std::atomic<double> fShare{0}; ///< that is done, 0 to 1
};

/// Throws when this is the thread of some work that is to end. For what can't look at its `Control`.
void ThrowIfCancelled();

/// Runs work on another thread, without the interpreter's lock. Meanwhile this thread serves Python: it lets
/// signals be handled, so that Ctrl-C ends the work, and tells `progress`, if it isn't None, the share that is done,
/// at the end 1. What these raise ends the work, and is raised when that has ended; else what the work throws is.
/// @param work  mustn't touch Python; looks at `fCancel` each few milliseconds
void Serve(const pybind11::object& progress, const std::function<void(Control&)>& work);
