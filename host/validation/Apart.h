#pragma once
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
    std::string trouble; ///< such as "crashed with SIGSEGV"; empty when it came to its end
    Activity activity;   ///< the last one
};

/// Tells the one who waits for the job. Each text is a line.
using Teller = std::function<void(const std::string& line)>;

/// Runs `job` in a process of its own and waits for it; past the limit, ends it. The process is a copy of this one,
/// which must have one thread. What the job prints to the standard output is lost.
Ending RunApart(const std::function<void(const Teller&, Activity&)>& job, std::chrono::milliseconds limit);

/// Ends this process as one that hung when it computes for longer from now on. For jobs that run apart.
void LimitProcessorTime(std::chrono::microseconds limit);

} // namespace fernwick::validation
