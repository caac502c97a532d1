#pragma once
#include <cstddef>
#include <stdexcept>

/// What the command answers to the shell.
enum ExitCode : int {
    kSucceeded = 0,
    kFailed = 1,        ///< the job couldn't be done
    kBadUsage = 2,      ///< the command line is wrong
    kInterrupted = 130, ///< stopped by Ctrl-C, as shells have it
};

/// A command line that can be read but makes no sense.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Thrown by a job that Ctrl-C stopped.
struct Interrupted {
    size_t written = 0; ///< pictures that are whole
};
