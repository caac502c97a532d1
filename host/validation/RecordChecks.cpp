#include "frame/TMCString.h"
#include "host/parameters/RecordDefaults.h"
#include "host/validation/Checks.h"
#include "host/validation/FuzzCase.h"
#include "host/validation/Inspection.h"
#include "host/validation/Sheet.h"
#include "host/validation/Statements.h"
#include <fmt/format.h>

// What a class makes of its record: its defaults, what counts as the same, and what it keeps of a slot.

namespace fernwick::validation {

namespace {

constexpr int kRecordSamples = 20;
constexpr int kRecordCases = 40;

/// Gives a field another value than it has.
void Alter(const Field& field, char* record, IMCUnknown* shader)
{
    char* const place = record + field.fOffset;
    switch (field.fType) {
    case FieldType::kShader:
        *reinterpret_cast<SubShaderSlot*>(place) = shader;
        break;
    case FieldType::kString:
        *reinterpret_cast<TMCString255*>(place) = "another text";
        break;
    case FieldType::kBool:
        *place ^= 1;
        break;
    case FieldType::kInt32:
    case FieldType::kCode:
        *reinterpret_cast<int32_t*>(place) ^= 1;
        break;
    default: // one or more floats, of which the first
        *reinterpret_cast<float*>(place) += 1;
    }
}

/// All that a class answers to the same samples.
struct Life {
    std::vector<Sheet> sheets;
    std::vector<ProbeCall> calls; ///< of plugged shaders, not of the scene
};

Life Live(const Specimen& object, const std::vector<ShadingIn>& samples, CallLog& log)
{
    Life life;
    log.Clear();
    for (const ShadingIn& sample : samples) {
        life.sheets.emplace_back(sample);
        life.sheets.back().Ask(object.Shader());
    }
    life.calls = log.OfShaders();
    return life;
}

std::string Calls(size_t count) { return count == 1 ? "1 call" : fmt::format("{} calls", count); }

/// Empties all slots of an object, or plugs what is no shader.
void Unplug(const Specimen& object, const ParameterTable& table, IMCUnknown* instead)
{
    for (const Field* const slot : SlotsOf(table))
        object.Slot(*slot) = instead;
    object.Changed();
}

} // namespace

void CheckDefaultValues(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const Specimen object(subject.library, table);
    const std::string wrong = WrongDefault(table, object.Record());
    inspection.Require(wrong.empty(), "a new object's " + wrong);
}

void CheckSameParameters(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const std::string_view uncompared = StatementOf(table).uncompared;
    const auto shader = MakeCounted<ProbeShader>(kOutputColor);
    const Specimen object(subject.library, table);
    const auto require = [&](const Specimen& other, bool same, const std::string& what) {
        inspection.Doing(("asking for SameParameters of " + what).c_str());
        const bool came = object.Shader().SameParameters(&other.Shader()) != 0;
        inspection.Require(came == same,
            fmt::format("SameParameters of {}: expected {}, came {}", what, same ? "nonzero" : "0",
                same ? "0" : "nonzero"));
    };
    require({subject.library, table}, uncompared != "*", "two new objects");
    for (const Field& field : table.fFields) {
        const Specimen other(subject.library, table);
        Alter(field, other.Record(), shader.Get());
        require(other, Names(uncompared, field.fName), "two objects that differ in " + field.fName);
    }
}

void CheckEmptiedSlots(Inspection& inspection, const ParameterTable& table)
{
    if (SlotsOf(table).empty())
        return;
    const Subject subject(inspection.fJob.library);
    const bool keeps = StatementOf(table).keepsShaders;
    const auto nothing = MakeCounted<ProbeUnknown>();
    for (uint64_t seed = inspection.fJob.seed; seed < inspection.fJob.seed + kRecordCases; ++seed) {
        FuzzCase fuzz(table, seed);
        CallLog log;
        const FuzzCase::Listening listening(fuzz, log);
        std::vector<ShadingIn> samples;
        for (int i = 0; i < kRecordSamples; ++i)
            samples.push_back(fuzz.NextSample());
        const Specimen plugged(subject.library, table);
        const Specimen emptied(subject.library, table);
        const Specimen wrong(subject.library, table);
        for (const Specimen* const object : {&plugged, &emptied, &wrong}) {
            fuzz.Apply(*object);
            object->Changed();
        }
        plugged.Changed();
        inspection.Doing(fmt::format("shading with emptied slots, seed {}", seed).c_str());
        Unplug(emptied, table, nullptr);
        Unplug(wrong, table, nothing.Get());
        const Life before = Live(plugged, samples, log);
        const Life after = Live(emptied, samples, log);
        const size_t expected = keeps ? before.calls.size() : 0;
        const size_t called = Live(wrong, samples, log).calls.size();
        if (!inspection.Require(after.calls.size() == expected,
                fmt::format(
                    "shading after all slots were emptied, seed {}: expected {} of what was plugged, came {}",
                    seed, Calls(expected), Calls(after.calls.size())))
            || !inspection.Require(called == 0,
                fmt::format(
                    "shading after what is no shader was plugged, seed {}: expected no call of what was "
                    "plugged before, came {}",
                    seed, Calls(called))))
            return;
        for (size_t i = 0; keeps && i < samples.size(); ++i)
            if (const char* const operation = before.sheets[i].DifferenceFrom(after.sheets[i])) {
                inspection.Found(fmt::format("{} after all slots were emptied, seed {}, sample {}: expected "
                                             "the answer of before, {}, came {}",
                    operation, seed, i + 1, before.sheets[i].AnswerUnlike(after.sheets[i]),
                    after.sheets[i].AnswerUnlike(before.sheets[i])));
                return;
            }
        subject.utilities->Debug().Clear();
    }
}

} // namespace fernwick::validation
