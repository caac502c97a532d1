#pragma once
#include "host/validation/Apart.h"
#include "host/validation/Validation.h"
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

/// A text for an exception that came out of the library; to be called where it is caught.
std::string TextOfException();

} // namespace fernwick::validation
