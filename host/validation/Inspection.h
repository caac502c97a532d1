#pragma once
#include "frame/Errors.h"
#include "host/validation/Apart.h"
#include "host/validation/Validation.h"
#include <fmt/format.h>
#include <set>
#include <string>

namespace fernwick::validation {

/// What a running check has in hand: the job, and whom to tell of faults.
class Inspection {
public:
    Inspection(const Check& check, const Job& job, const Teller& teller, Activity& activity)
        : fJob(job), fCheck(check), fTeller(teller), fActivity(activity)
    { }

    const Job& fJob;

    /// The class that further findings belong to; null for the module.
    void Concerns(const ParameterTable* table) { fTable = table; }
    /// What is about to be done, for the case that it never ends well.
    void Doing(const char* text) { fActivity.Set(text); }

    void Found(const std::string& what) { Found(what, "", "", fJob.seed, ""); }
    /// @param options  further options of the command that shows it again
    void Found(const std::string& what, const std::string& field, const std::string& value, uint64_t seed,
        const std::string& options);
    /// Tells `what` when `holds` doesn't. @return `holds`
    bool Require(bool holds, const std::string& what)
    {
        if (!holds)
            Found(what);
        return holds;
    }

    /// Tells what was looked at, and both values, when they differ. @return whether they are the same
    template <class Expected, class Came>
    bool Expect(const std::string& what, const Expected& expected, const Came& came)
    {
        return expected == came
            || Require(false, fmt::format("{}: expected {}, came {}", what, expected, came));
    }
    /// Tells a fault. @return whether there is none, which is an empty text
    bool RequireNone(const std::string& fault) { return Require(fault.empty(), fault); }

    /// What `RunApart` gave of an inspection of the same check: its findings, and one for a bad end.
    static std::vector<Finding> Read(
        const Check& check, const Job& job, const ParameterTable* table, const Ending& ending);

private:
    const Check& fCheck;
    const Teller& fTeller;
    Activity& fActivity;
    const ParameterTable* fTable = nullptr;
    std::set<std::string> fTold; // nothing is told twice
};

/// Of an operation that answers a status and an object: "0x80014002 and null".
std::string AnswerText(MCErr status, const void* object);
constexpr const char* kMade = "0x0 and an object";

/// A status as a text.
std::string StatusText(MCErr status);

/// The fault that an exception out of the library is; to be called where it is caught.
/// @param doing  what was done
std::string FaultOfException(const std::string& doing);

} // namespace fernwick::validation
