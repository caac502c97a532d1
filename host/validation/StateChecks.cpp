#include "host/validation/Checks.h"
#include "host/validation/FuzzCase.h"
#include "host/validation/Inspection.h"
#include "host/validation/Sheet.h"
#include "host/validation/StaticData.h"
#include <barrier>
#include <fmt/format.h>
#include <thread>

// What an object knows is its own: none of it is another object's, and none of it is the module's.

namespace fernwick::validation {

namespace {

constexpr int kStateSamples = 20;
constexpr int kThreadedSamples = 200;
constexpr int kStateCases = 30;

/// An object with a random record, what is plugged into it and its scene.
struct Actor {
    Actor(const Subject& subject, const ParameterTable& table, uint64_t seed)
        : fuzz(table, seed), object(subject.library, table)
    {
        fuzz.Apply(object);
        object.Changed();
    }

    Sheet Shade()
    {
        Sheet sheet(fuzz.NextSample());
        sheet.Ask(object.Shader());
        return sheet;
    }
    std::vector<Sheet> Shade(int samples)
    {
        std::vector<Sheet> sheets;
        for (int i = 0; i < samples; ++i)
            sheets.push_back(Shade());
        return sheets;
    }

    FuzzCase fuzz;
    Specimen object;
};

std::vector<Sheet> ShadeAlone(const Subject& subject, const ParameterTable& table, uint64_t seed, int samples)
{
    Actor actor(subject, table, seed);
    return actor.Shade(samples);
}

/// Tells the first difference. @return true when there is none
bool RequireSame(Inspection& inspection, const std::vector<Sheet>& alone, const std::vector<Sheet>& together,
    uint64_t seed, const char* how)
{
    for (size_t i = 0; i < alone.size(); ++i)
        if (const char* const operation = alone[i].DifferenceFrom(together[i]))
            return inspection.Require(false,
                fmt::format(
                    "{} {}, seed {}, sample {}: expected the answer that the object gives alone, {}, came {}",
                    operation, how, seed, i + 1, alone[i].AnswerUnlike(together[i]),
                    together[i].AnswerUnlike(alone[i])));
    return true;
}

} // namespace

void CheckInterleaved(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    for (uint64_t seed = inspection.fJob.seed; seed < inspection.fJob.seed + kStateCases; seed += 2) {
        inspection.Doing(fmt::format("shading two objects by turns, seed {}", seed).c_str());
        const std::vector<Sheet> alone[] = {ShadeAlone(subject, table, seed, kStateSamples),
            ShadeAlone(subject, table, seed + 1, kStateSamples)};
        {
            Actor left(subject, table, seed);
            Actor right(subject, table, seed + 1);
            std::vector<Sheet> together[2];
            for (int i = 0; i < kStateSamples; ++i) {
                together[0].push_back(left.Shade());
                together[1].push_back(right.Shade());
            }
            for (const size_t i : {0u, 1u})
                if (!RequireSame(inspection, alone[i], together[i], seed + i, "by turns with another object"))
                    return;
        }
        inspection.Doing(fmt::format(
            "shading an object while another one waits for its plugged shader or its scene, seed {}", seed)
                             .c_str());
        Actor outer(subject, table, seed);
        Actor inner(subject, table, seed + 1);
        CallLog log;
        log.fInterlude = [&] { inner.Shade(); };
        const FuzzCase::Listening listening(outer.fuzz, log);
        const std::vector<Sheet> interrupted = outer.Shade(kStateSamples);
        if (!RequireSame(
                inspection, alone[0], interrupted, seed, "while another object shades within the sample"))
            return;
        subject.utilities->Debug().Clear();
    }
}

void CheckTwoThreads(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    for (uint64_t seed = inspection.fJob.seed; seed < inspection.fJob.seed + kStateCases; seed += 2) {
        inspection.Doing(fmt::format("shading on two threads, seed {}", seed).c_str());
        const std::vector<Sheet> alone[] = {ShadeAlone(subject, table, seed, kThreadedSamples),
            ShadeAlone(subject, table, seed + 1, kThreadedSamples)};
        Actor actors[] = {{subject, table, seed}, {subject, table, seed + 1}};
        std::vector<Sheet> together[2];
        std::barrier start(2);
        const auto shade = [&](size_t i) {
            together[i].reserve(kThreadedSamples);
            start.arrive_and_wait();
            together[i] = actors[i].Shade(kThreadedSamples);
        };
        std::thread other(shade, 1);
        shade(0);
        other.join();
        for (const size_t i : {0u, 1u})
            if (!RequireSame(inspection, alone[i], together[i], seed + i, "beside another thread"))
                return;
        subject.utilities->Debug().Clear();
    }
}

void CheckStaticData(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const StaticData data(inspection.fJob.library);
    uint64_t seed = inspection.fJob.seed;
    const auto watch = [&](const char* operation, const auto& action) {
        inspection.Doing(fmt::format("{}, seed {}", operation, seed).c_str());
        const std::optional<uintptr_t> written = data.WrittenBy(action);
        return inspection.Require(!written,
            fmt::format("{} writes to static data, seed {}: expected none, came one at {:#x} of the module",
                operation, seed, written.value_or(0)));
    };
    for (; seed < inspection.fJob.seed + kStateCases; ++seed) {
        FuzzCase fuzz(table, seed);
        const Specimen object(subject.library, table);
        fuzz.Apply(object);
        bool clean = watch("ExtensionDataChanged", [&] { object.Changed(); });
        for (int i = 0; clean && i < kStateSamples; ++i) {
            Sheet sheet(fuzz.NextSample());
            for (const Sheet::Operation operation : Sheet::kOperations)
                clean = watch(Sheet::NameOf(operation), [&] { sheet.Ask(object.Shader(), operation); })
                    && clean;
        }
        subject.utilities->Debug().Clear();
        if (!clean)
            return;
    }
}

} // namespace fernwick::validation
