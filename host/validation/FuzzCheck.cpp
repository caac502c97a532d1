#include "host/parameters/FieldValue.h"
#include "host/validation/Checks.h"
#include "host/validation/FuzzCase.h"
#include "host/validation/Inspection.h"
#include <algorithm>
#include <fmt/format.h>
#include <sstream>

// Random records. The cases run in a process of their own; what goes wrong there is repeated in further ones with
// ever fewer fields of the record filled, until only those are left that matter.

namespace fernwick::validation {

namespace {

class Fuzzer {
public:
    Fuzzer(Inspection& inspection, const ParameterTable& table)
        : fJob(inspection.fJob), fInspection(inspection), fTable(table)
    { }

    void Run()
    {
        const Ending ending = Search();
        const std::string fault = FaultOf(ending);
        if (fault.empty())
            return;
        const uint64_t seed = ending.activity.seed;
        std::vector<bool> kept(FuzzCase(fTable, seed).FieldCount(), true);
        if (Again(seed, kept).empty()) { // needs what came before it, or more time
            fInspection.Found(fault, "", "", fJob.seed, fmt::format(" --records {}", seed - fJob.seed + 1));
            return;
        }
        const std::string reduced = Reduce(seed, kept);
        const auto [fields, values] = Values(seed, kept);
        fInspection.Found(reduced.empty() ? fault : reduced, fields, values, seed, " --records 1");
    }

private:
    const Job& fJob;
    Inspection& fInspection;
    const ParameterTable& fTable;
    std::chrono::nanoseconds fSpent{};

    std::chrono::milliseconds CaseLimit() const { return fJob.timeLimit / 20; }

    /// In a process of its own, whose time is counted.
    Ending Spend(const std::function<void(const Teller&, Activity&)>& job, std::chrono::milliseconds limit)
    {
        Ending ending = RunApart(job, limit);
        fSpent += ending.time;
        return ending;
    }

    static std::string FaultOf(const Ending& ending)
    {
        if (!ending.trouble.empty())
            return fmt::format("{} while {}", ending.trouble, ending.activity.text);
        return ending.lines.substr(0, ending.lines.find('\n'));
    }

    /// Runs case after case up to the first fault, each usual number of them in a process of its own.
    Ending Search()
    {
        const auto records = static_cast<uint64_t>(fJob.records);
        Ending ending{};
        for (uint64_t first = 0; first < records && FaultOf(ending).empty(); first += Job::kUsualRecords) {
            const auto search = [&](const Teller& teller, Activity& activity) {
                const Subject subject(fJob.library);
                for (uint64_t i = first; i < std::min(first + Job::kUsualRecords, records); ++i)
                    if (!Attempt(subject, fJob.seed + i, nullptr, teller, activity))
                        return;
            };
            fSpent = {};
            ending = Spend(search, fJob.timeLimit * 6 / 10);
        }
        return ending;
    }

    /// Runs one case. @return the fault; empty for none
    std::string Again(uint64_t seed, const std::vector<bool>& kept)
    {
        const auto again = [&](const Teller& teller, Activity& activity) {
            Attempt(Subject(fJob.library), seed, &kept, teller, activity);
        };
        return FaultOf(Spend(again, fJob.timeLimit / 4));
    }

    bool Attempt(const Subject& subject, uint64_t seed, const std::vector<bool>* kept, const Teller& teller,
        Activity& activity) const
    {
        activity.seed = seed;
        activity.Set("trying a random record");
        LimitProcessorTime(CaseLimit());
        std::string fault;
        try {
            FuzzCase fuzz(fTable, seed);
            fault = fuzz.Try(subject, fTable.fClassIDs.front(),
                kept != nullptr ? *kept : std::vector<bool>(fuzz.FieldCount(), true));
        } catch (...) {
            fault = FaultOfException(activity.text);
        }
        if (!fault.empty())
            teller(fault);
        return fault.empty();
    }

    /// Takes fields out of `kept`, half of them at a time, then ever fewer, as long as there is a fault.
    /// @return the last fault; empty when no field could be taken out
    std::string Reduce(uint64_t seed, std::vector<bool>& kept)
    {
        const auto most = fJob.timeLimit * 8 / 10;
        std::string last;
        for (size_t chunk = kept.size(); chunk >= 1; chunk /= 2)
            for (size_t start = 0; start < kept.size() && fSpent < most; start += chunk) {
                std::vector<bool> fewer = kept;
                for (size_t i = start; i < std::min(start + chunk, kept.size()); ++i)
                    fewer[i] = false;
                if (fewer == kept)
                    continue;
                const std::string fault = Again(seed, fewer);
                if (fault.empty())
                    continue;
                last = fault;
                kept = fewer;
            }
        return last;
    }

    /// The names of the kept fields and their values.
    std::pair<std::string, std::string> Values(uint64_t seed, const std::vector<bool>& kept) const
    {
        const FuzzCase fuzz(fTable, seed);
        const auto tell = [&](const Teller& teller, Activity&) {
            const Subject subject(fJob.library);
            const Specimen object(subject.library, fTable);
            fuzz.Apply(object, kept);
            for (size_t i = 0; i < kept.size(); ++i)
                if (kept[i])
                    teller(ValueText(fuzz.FieldAt(i), ReadField(fuzz.FieldAt(i), object.Record())));
        };
        std::istringstream lines(RunApart(tell, fJob.timeLimit / 10).lines);
        std::pair<std::string, std::string> texts;
        for (size_t i = 0; i < kept.size(); ++i) {
            std::string value;
            if (!kept[i])
                continue;
            std::getline(lines, value);
            const char* const comma = texts.first.empty() ? "" : ", ";
            texts.first += comma + fuzz.FieldAt(i).fName;
            texts.second += comma + value;
        }
        return texts;
    }
};

} // namespace

void CheckParameterFuzz(Inspection& inspection, const ParameterTable& table)
{
    inspection.Doing("trying random records");
    Fuzzer(inspection, table).Run();
}

} // namespace fernwick::validation
