#include "host/FieldValue.h"
#include "host/validation/Checks.h"
#include "host/validation/FuzzCase.h"
#include "host/validation/Inspection.h"
#include "host/validation/Sheet.h"
#include <fmt/format.h>
#include <sstream>

// Random records. The cases run in a process of their own; what goes wrong there is repeated in further ones with
// ever fewer fields of the record filled, until only those are left that matter.

namespace fernwick::validation {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kSamples = 16;

/// Two objects in memory that held different bytes get the same record and the same samples.
/// @return the fault; empty for none
std::string Try(
    const Subject& subject, const ParameterTable& table, uint64_t seed, const std::vector<bool>* kept)
{
    FuzzCase fuzz(table, seed);
    {
        const GUID& classID = table.fClassIDs.front();
        const Specimen left = subject.MakeIn(0x00, classID);
        const Specimen right = subject.MakeIn(0xFF, classID);
        for (const Specimen* const object : {&left, &right})
            fuzz.Apply(*object, kept != nullptr ? *kept : std::vector<bool>(fuzz.FieldCount(), true));
        if (left.Changed() != right.Changed())
            return "ExtensionDataChanged answers two things for one record";
        if (const std::string difference = DifferenceOf(table, left.Record(), right.Record());
            !difference.empty())
            return "ExtensionDataChanged derives two things from one record: " + difference;
        for (int i = 0; i < kSamples; ++i) {
            const ShadingIn sample = fuzz.NextSample();
            Sheet leftSheet(sample);
            Sheet rightSheet(sample);
            leftSheet.Ask(left.Shader());
            rightSheet.Ask(right.Shader());
            if (const std::string wild = leftSheet.WildWrite(); !wild.empty())
                return wild;
            if (const char* const operation = leftSheet.DifferenceFrom(rightSheet))
                return std::string(operation) + " answers two things for one record and sample";
        }
    }
    if (!fuzz.IsLetGo())
        return "references to plugged shaders or the scene are left over";
    subject.utilities->Debug().Clear();
    return subject.Remains().empty() ? "" : "after the last release " + subject.Remains();
}

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
    const Clock::time_point fStart = Clock::now();

    std::chrono::milliseconds CaseLimit() const { return fJob.timeLimit / 20; }

    static std::string FaultOf(const Ending& ending)
    {
        if (!ending.trouble.empty())
            return fmt::format("{} while {}", ending.trouble, ending.activity.text);
        return ending.lines.substr(0, ending.lines.find('\n'));
    }

    /// Runs case after case up to the first fault.
    Ending Search() const
    {
        const auto search = [&](const Teller& teller, Activity& activity) {
            const Subject subject(fJob.library);
            for (uint64_t i = 0; i < static_cast<uint64_t>(fJob.records); ++i)
                if (!Attempt(subject, fJob.seed + i, nullptr, teller, activity))
                    return;
        };
        return RunApart(search, fJob.timeLimit * 6 / 10);
    }

    /// Runs one case. @return the fault; empty for none
    std::string Again(uint64_t seed, const std::vector<bool>& kept) const
    {
        const auto again = [&](const Teller& teller, Activity& activity) {
            Attempt(Subject(fJob.library), seed, &kept, teller, activity);
        };
        return FaultOf(RunApart(again, fJob.timeLimit / 4));
    }

    bool Attempt(const Subject& subject, uint64_t seed, const std::vector<bool>* kept, const Teller& teller,
        Activity& activity) const
    {
        activity.seed = seed;
        activity.Set("trying a random record");
        LimitProcessorTime(CaseLimit());
        std::string fault;
        try {
            fault = Try(subject, fTable, seed, kept);
        } catch (...) {
            fault = TextOfException();
        }
        if (!fault.empty())
            teller(fault);
        return fault.empty();
    }

    /// Takes fields out of `kept`, half of them at a time, then ever fewer, as long as there is a fault.
    /// @return the last fault; empty when no field could be taken out
    std::string Reduce(uint64_t seed, std::vector<bool>& kept) const
    {
        const Clock::time_point end = fStart + fJob.timeLimit * 8 / 10;
        std::string last;
        for (size_t chunk = kept.size(); chunk >= 1; chunk /= 2)
            for (size_t start = 0; start < kept.size() && Clock::now() < end; start += chunk) {
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
