#include "host/validation/Validation.h"
#include "host/validation/Checks.h"
#include "host/validation/Inspection.h"
#include "host/validation/Specimen.h"

namespace fernwick::validation {

namespace {

constexpr Check kChecks[] = {
    {"exports", "A host finds the six functions, and nothing else of the module meets its names",
        CheckExports, nullptr},
    {"life-cycle", "The module can come and go a thousand times and leaves nothing behind", CheckLifeCycle,
        nullptr},
    {"clean-up-twice", "A second clean-up does nothing, so that services aren't released twice",
        CheckCleanUpTwice, nullptr},
    {"withheld-services", "A host may withhold any service, or all, or come without any object",
        CheckWithheldServices, nullptr},
    {"refusals", "An unknown class or interface is refused and leaves nothing", CheckRefusals, nullptr},
    {"routes", "Every identifier of saved documents makes its class, twins alike", nullptr, CheckRoutes},
    {"buffer-sizes", "The record lies where the host writes it, and is as long as documents hold it", nullptr,
        CheckBufferSizes},
    {"default-values", "A new object holds the parameters that panels show and documents leave out", nullptr,
        CheckDefaultValues},
    {"defaults", "A new object always has the same parameters and answers, whatever its memory held", nullptr,
        CheckDefaults},
    {"component-laws", "Faces of an object are one object with one count", nullptr, CheckComponentLaws},
    {"aggregation", "An object inside a wrapper counts, asks and dies through it", nullptr, CheckAggregation},
    {"stated-answers", "Output kinds and needs are those that hosts plan their rendering by", nullptr,
        CheckStatedAnswers},
    {"reserved-slots", "Every operation stands in its place in the interface", nullptr, CheckReservedSlots},
    {"absent-kinds", "What a class doesn't offer leaves the result as it was", nullptr, CheckAbsentKinds},
    {"slots", "Every slot can be empty, plugged, emptied again, or hold what is no shader", nullptr,
        CheckSlots},
    {"emptied-slots", "What was unplugged is never called again, but by the layers, which keep it", nullptr,
        CheckEmptiedSlots},
    {"same-parameters", "Two objects count as the same when nothing that is compared differs", nullptr,
        CheckSameParameters},
    {"hosts", "A host that gives no scene, or answers null or nothing, harms nobody", nullptr, CheckHosts},
    {"refused-memory", "Memory refused at any allocation is a failure that leaves nothing", nullptr,
        CheckRefusedMemory},
    {"interleaved", "Two objects by turns, or one within the other's sample, answer as each does alone",
        nullptr, CheckInterleaved},
    {"two-threads", "Two objects of a class don't disturb each other", nullptr, CheckTwoThreads},
    {"static-data", "Changing and shading write to no data of the module, which all objects share", nullptr,
        CheckStaticData},
    {"processor-state", "The processor's rounding and its traps stay as the host set them", nullptr,
        CheckProcessorState},
    {"silence", "Nothing is printed to the host's outputs", nullptr, CheckSilence},
    {"stack", "An operation takes no more than 32 KiB of stack", nullptr, CheckStack},
    {"no-allocation", "Changing and shading ask for no memory", nullptr, CheckNoAllocation},
    {"leaks", "A life of any length leaves no block, component or reference", nullptr, CheckLeaks},
    {"parameter-fuzz",
        "No record and no sample makes a crash, a hang, a wild write, or a result left unset or to chance",
        nullptr, CheckParameterFuzz},
};

std::vector<Finding> RunOn(const Check& check, const Job& job, const ParameterTable* table)
{
    const auto inspect = [&](const Teller& teller, Activity& activity) {
        Inspection inspection(check, job, teller, activity);
        inspection.Doing(std::string("checking ").append(check.name).c_str());
        inspection.Concerns(table);
        try {
            if (table == nullptr)
                check.onModule(inspection);
            else
                check.onClass(inspection, *table);
        } catch (...) {
            inspection.Found(FaultOfException(activity.text));
        }
    };
    const bool isLong = check.onClass == &CheckParameterFuzz; // which runs its cases apart by itself
    const int portions = isLong ? 1 + job.records / Job::kUsualRecords : 1;
    return Inspection::Read(check, job, table, RunApart(inspect, job.timeLimit * portions, job.cancel));
}

} // namespace

std::span<const Check> AllChecks() { return kChecks; }

std::string LoadTrouble(const Job& job)
{
    constexpr std::chrono::seconds kLimit{10};
    const auto load = [&](const Teller& teller, Activity& activity) {
        activity.Set("it was loaded");
        try {
            const Subject subject(job.library);
        } catch (...) {
            teller(FaultOfException(job.library.string() + ": loading"));
        }
    };
    const Ending ending = RunApart(load, kLimit, job.cancel);
    if (!ending.lines.empty())
        return ending.lines.substr(0, ending.lines.find('\n'));
    return ending.trouble.empty()
        ? ""
        : job.library.string() + ": " + ending.trouble + " while " + ending.activity.text;
}

std::vector<Finding> Run(const Check& check, const Job& job)
{
    if (check.onModule != nullptr)
        return RunOn(check, job, nullptr);
    std::vector<Finding> findings;
    for (const ParameterTable& table : AllClasses()) {
        if (table.fClassIDs.empty() || (job.onlyClass != nullptr && job.onlyClass != &table))
            continue;
        if (job.cancel != nullptr && *job.cancel)
            break;
        for (Finding& finding : RunOn(check, job, &table))
            findings.push_back(std::move(finding));
    }
    return findings;
}

} // namespace fernwick::validation
