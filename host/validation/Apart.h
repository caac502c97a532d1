#pragma once
#include <atomic>
#include <chrono>
#include <functional>
#include <string>

namespace fernwick::validation {

/// What a process that works apart is doing. It can be read when the process is gone.
struct Activity {
    uint64_t seed;
    char text[120];

    void Set(const char* doing);
};

/// How a job ended that ran apart.
struct Ending {
    std::string lines;   ///< everything that the job told
    std::string trouble; ///< such as "crashed with SIGSEGV"; empty when it came to its end, or was cancelled
    Activity activity;   ///< the last one
    std::chrono::nanoseconds time{}; ///< of the processor, and how long it has stood still at its end
};

/// Tells the one who waits for the job. Each text is a line.
using Teller = std::function<void(const std::string& line)>;

/// Runs `job` in a process of its own and waits for it. The process is a copy of this one, which must have one thread.
/// What the job prints to the standard output is lost, and Ctrl-C isn't its business.
///
/// It is ended when it has taken more processor time than the limit, or none at all for as long, but for 3 seconds at
/// least. A machine that is busy with other things gives a process little time, but seldom none. What neither computes
/// nor stands still is ended after ten times the limit, but after 30 seconds at least.
/// @param cancel  ends it when it turns true; null for never
Ending RunApart(const std::function<void(const Teller&, Activity&)>& job, std::chrono::milliseconds limit,
    const std::atomic<bool>* cancel = nullptr);

/// Ends this process as one that hung when it computes for longer from now on. For jobs that run apart.
void LimitProcessorTime(std::chrono::microseconds limit);

} // namespace fernwick::validation
