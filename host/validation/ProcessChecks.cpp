#include "host/validation/Checks.h"
#include "host/validation/FuzzCase.h"
#include "host/validation/Inspection.h"
#include "host/validation/Outputs.h"
#include "host/validation/ProcessorState.h"
#include "host/validation/Sheet.h"
#include "host/validation/StackDepth.h"
#include <fmt/format.h>
#include <thread>

// What a class does to the process and the thread that it runs in.

namespace fernwick::validation {

namespace {

constexpr int kProcessSamples = 20;
constexpr int kProcessCases = 20;
constexpr size_t kMostStack = 32 * 1024; // bytes of one operation

/// Lives through many records and samples. Calls `around(name, action)` with each operation, whose name tells the seed
/// too, and which runs `action` once; ends when that answers false.
template <class Around>
void Live(Inspection& inspection, const Subject& subject, const ParameterTable& table, Around&& around)
{
    for (uint64_t seed = inspection.fJob.seed; seed < inspection.fJob.seed + kProcessCases; ++seed) {
        FuzzCase fuzz(table, seed);
        const Specimen object(subject.library, table);
        fuzz.Apply(object);
        const auto named
            = [seed](const char* operation) { return fmt::format("{}, seed {}", operation, seed); };
        if (!around(named("ExtensionDataChanged"), [&] { object.Changed(); }))
            return;
        for (int i = 0; i < kProcessSamples; ++i) {
            Sheet sheet(fuzz.NextSample());
            for (const Sheet::Operation operation : Sheet::kOperations)
                if (!around(named(Sheet::NameOf(operation)), [&] { sheet.Ask(object.Shader(), operation); }))
                    return;
        }
        subject.utilities->Debug().Clear();
    }
}

} // namespace

void CheckProcessorState(Inspection& inspection, const ParameterTable& table)
{
    const ProcessorState before = ProcessorState::Now();
    const auto require = [&](const std::string& operation) {
        const ProcessorState after = ProcessorState::Now();
        before.Restore();
        return inspection.Require(after == before,
            fmt::format("how the processor computes after {}: expected {}, came {}", operation, before.Text(),
                after.Text()));
    };
    inspection.Doing("loading and making an object");
    const Subject subject(inspection.fJob.library);
    require("loading");
    Specimen(subject.library, table);
    require("making an object");
    Live(inspection, subject, table, [&](const std::string& operation, const auto& action) {
        inspection.Doing(operation.c_str());
        action();
        return require(operation);
    });
}

void CheckSilence(Inspection& inspection, const ParameterTable& table)
{
    inspection.Doing("living a life with both outputs listened to");
    std::string printed;
    {
        const Outputs outputs;
        {
            const Subject subject(inspection.fJob.library);
            Live(inspection, subject, table, [&](const std::string&, const auto& action) {
                action();
                return true;
            });
        }
        printed = outputs.Heard();
    }
    inspection.Require(printed.empty(),
        fmt::format("a life of the module and the class prints: expected nothing, came \"{}\"",
            printed.substr(0, printed.find('\n'))));
}

void CheckStack(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const auto measure = [&] {
        Live(inspection, subject, table, [&](const std::string& operation, const auto& action) {
            inspection.Doing(fmt::format("{}, on a thread's stack", operation).c_str());
            const size_t depth = StackDepthOf(action);
            return inspection.Require(depth <= kMostStack,
                fmt::format("stack of {}: expected at most {} bytes, came {}", operation, kMostStack, depth));
        });
    };
    std::thread apart([&] { // its stack is larger than what is watched, and nobody else's
        try {
            measure();
        } catch (...) {
            inspection.Found(FaultOfException("measuring the stack"));
        }
    });
    apart.join();
}

} // namespace fernwick::validation
