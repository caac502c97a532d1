#pragma once
#include "host/parameters/ParameterTable.h"
#include <atomic>
#include <chrono>
#include <filesystem>
#include <span>

namespace fernwick::validation {

/// What is validated, and how hard.
struct Job {
    static constexpr int kUsualRecords = 2000;

    std::filesystem::path library;
    uint64_t seed = 1;           ///< start of all random numbers
    int records = kUsualRecords; ///< random parameter records a class
    /// Processor time of one check on one class, with more records of each usual number of them. Also how long a check
    /// may stand still.
    std::chrono::milliseconds timeLimit{60000};
    const ParameterTable* onlyClass = nullptr; ///< null for all with a route
    const std::atomic<bool>* cancel = nullptr; ///< turns true to end the checks; null for never
};

/// One fault.
struct Finding {
    std::string className; ///< empty for a fault of the module
    std::string field;     ///< of the class's record, several with commas; empty when no parameter matters
    std::string value;     ///< of the fields, in the notation of documents
    std::string what;
    uint64_t seed;      ///< with which it shows
    std::string replay; ///< the command that shows it again
};

class Inspection;

/// One thing that is looked at. It has one of the two functions.
struct Check {
    std::string_view name;
    std::string_view protects; ///< what would go wrong for a host or its users
    void (*onModule)(Inspection&);
    void (*onClass)(Inspection&, const ParameterTable&);
};

/// All checks, in the order in which they run.
std::span<const Check> AllChecks();

/// Why the job's library can't be loaded, in one line that begins with its path; empty when it can, and when the job is
/// cancelled. It is tried in a process of its own.
std::string LoadTrouble(const Job& job);

/// Runs one check: in a process of its own for the module, or one for each class. A crash and an overrun of the
/// time limit are findings. When the job is cancelled, some may be missing.
std::vector<Finding> Run(const Check& check, const Job& job);

} // namespace fernwick::validation
