#include "host/validation/FuzzCase.h"
#include "frame/TMCString.h"
#include "host/validation/Sheet.h"
#include "host/validation/Statements.h"
#include "host/validation/SurfaceFields.h"
#include <cstring>
#include <fmt/format.h>

namespace fernwick::validation {

namespace {

constexpr int kFuzzSamples = 16;

template <class Value> void Append(std::vector<char>& bytes, const Value& value)
{
    const auto* const start = reinterpret_cast<const char*>(&value);
    bytes.insert(bytes.end(), start, start + sizeof value);
}

std::vector<char> RandomBytes(Random& random, size_t count)
{
    std::vector<char> bytes;
    for (size_t i = 0; i < count; ++i)
        bytes.push_back(static_cast<char>(random.Bits(1)));
    return bytes;
}

std::vector<char> RandomFloats(Random& random, size_t size)
{
    std::vector<char> bytes;
    while (bytes.size() < size)
        Append(bytes, random.Float());
    return bytes;
}

/// Everything of a string but its table of operations: counts that may be wrong, and a text that may have no end.
std::vector<char> RandomString(Random& random)
{
    constexpr size_t kHead = sizeof(void*);
    if (random.OneIn(3))
        return RandomBytes(random, sizeof(TMCString255) - kHead);
    constexpr const char* kTexts[] = {"Light", "Rendering Camera", "L", "", " ", "\xFF\xC0\x80"};
    const TMCString255 text(kTexts[random.Below(std::size(kTexts))]);
    const auto* const start = reinterpret_cast<const char*>(&text);
    return {start + kHead, start + sizeof text};
}

std::vector<char> RandomInteger(Random& random, const Field& field)
{
    std::vector<char> bytes;
    const auto choices = static_cast<uint32_t>(field.fChoices.size());
    if (choices != 0 && !random.OneIn(3))
        Append(bytes, field.fChoices[random.Below(choices)].fValue);
    else
        Append(bytes, random.Integer());
    return bytes;
}

std::vector<char> RandomValue(Random& random, const Field& field)
{
    switch (field.fType) {
    case FieldType::kInt32:
    case FieldType::kCode:
        return RandomInteger(random, field);
    case FieldType::kBool:
        return random.OneIn(4) ? RandomBytes(random, 1) : std::vector<char>{random.OneIn(2) ? '\1' : '\0'};
    case FieldType::kString:
        return RandomString(random);
    default:
        return RandomFloats(random, LayoutOf(field.fType).fSize);
    }
}

MCCountedPtr<ProbeShader> RandomShader(Random& random)
{
    if (random.OneIn(4))
        return {};
    const auto kinds = static_cast<uint32_t>(random.OneIn(8) ? random.Bits(4) : 2u << random.Below(4));
    return MakeCounted<ProbeShader>(kinds, static_cast<uint32_t>(random.Bits(4)));
}

Hospitality RandomHospitality(Random& random)
{
    return random.OneIn(8) ? Hospitality::kGivesNull
        : random.OneIn(8)  ? Hospitality::kLeavesUntouched
                           : Hospitality::kGives;
}

} // namespace

FuzzCase::FuzzCase(const ParameterTable& table, const Random& random)
    : fTable(table), fRandom(random), fScene(RandomHospitality(fRandom), fRandom),
      fHasScene(!fRandom.OneIn(8))
{
    const bool everything
        = fRandom.OneIn(2); // else most fields keep their defaults, so that deep branches are met
    for (const Field& field : table.fFields) {
        if (field.fType == FieldType::kShader) {
            fPlugs.push_back({&field, RandomShader(fRandom)});
            continue;
        }
        if (!everything && !fRandom.OneIn(4))
            continue;
        std::vector<char> bytes = RandomValue(fRandom, field);
        const size_t head = LayoutOf(field.fType).fSize - bytes.size();
        fFills.push_back({&field, field.fOffset + head, std::move(bytes)});
    }
}

void FuzzCase::Apply(const Specimen& object, const std::vector<bool>& kept) const
{
    for (size_t i = 0; i < fFills.size(); ++i)
        if (kept[i])
            std::memcpy(object.Record() + fFills[i].offset, fFills[i].bytes.data(), fFills[i].bytes.size());
    for (const Plug& plug : fPlugs)
        object.Slot(*plug.slot) = plug.shader.Get();
}

void FuzzCase::Listen(CallLog* log)
{
    fScene.Listen(log);
    for (size_t slot = 0; slot < fPlugs.size(); ++slot)
        if (fPlugs[slot].shader)
            fPlugs[slot].shader->Listen(log, static_cast<uint32_t>(slot));
}

ShadingIn FuzzCase::NextSample() { return RandomSample(fRandom, fHasScene ? fScene.Instance() : nullptr); }

std::string FuzzCase::Held()
{
    std::string held = fScene.Held();
    for (const Plug& plug : fPlugs)
        if (held.empty() && plug.shader)
            held = validation::Held(*plug.shader, "the shader plugged into " + plug.slot->fName);
    return held;
}

/// All operations, each of which leaves the object's record alone. @return the fault; empty for none
std::string FuzzCase::AskAll(
    Sheet& sheet, const Specimen& object, const RecordCopy& record, CallLog& surfaceCalls)
{
    const Listening listening(*this, surfaceCalls);
    for (const Sheet::Operation operation : Sheet::kOperations) {
        surfaceCalls.Clear(); // the surface is the last
        sheet.Ask(object.Shader(), operation);
        if (const std::string change = record.Change(false, StatementOf(fTable).shadedInto); !change.empty())
            return fmt::format("{} rewrites the record's {}", Sheet::NameOf(operation), change);
    }
    return "";
}

/// Shades the next sample with two objects that have one record. @return the fault; empty for none
/// @param otherContents  the results hold something else before
std::string FuzzCase::TrySample(
    const Specimen& left, const Specimen& right, const RecordCopy& record, bool otherContents)
{
    const Statement& stated = StatementOf(fTable);
    const ShadingIn sample = NextSample();
    Sheet leftSheet(sample);
    Sheet rightSheet = otherContents ? Sheet(sample, true, -3) : Sheet(sample);
    CallLog calls;
    if (std::string rewritten = AskAll(leftSheet, left, record, calls); !rewritten.empty())
        return rewritten;
    rightSheet.Ask(right.Shader());
    if (std::string wild = leftSheet.WildWrite(stated.sampleChanges); !wild.empty())
        return wild;
    if (std::string unset = leftSheet.LeftUnset(rightSheet, fTable.fOutputKinds, stated.leftResults);
        !unset.empty())
        return unset;
    if (otherContents)
        return leftSheet.WrongSurface(
            rightSheet, WrittenFields(fTable, left.Record(), calls, leftSheet.fProduced));
    const char* const operation = leftSheet.DifferenceFrom(rightSheet);
    return operation == nullptr
        ? ""
        : fmt::format(
            "{} of two new objects: expected one answer to one record and sample, came two", operation);
}

std::string FuzzCase::Try(const Subject& subject, const GUID& classID, const std::vector<bool>& kept)
{
    {
        const Specimen left = subject.MakeIn(0x00, classID);
        const Specimen right = subject.MakeIn(0xFF, classID);
        for (const Specimen* const object : {&left, &right})
            Apply(*object, kept);
        const RecordCopy applied(fTable, left);
        const MCErr statuses[] = {left.Changed(), right.Changed()};
        if (statuses[0] != statuses[1])
            return fmt::format("ExtensionDataChanged of two new objects: expected one answer to one record, "
                               "came {:#x} and {:#x}",
                statuses[0], statuses[1]);
        if (const std::string difference = DifferenceOf(fTable, left.Record(), right.Record());
            !difference.empty())
            return "ExtensionDataChanged of two new objects: expected one record derived from one, came two: "
                + difference;
        if (const std::string change = applied.Change(true, StatementOf(fTable).rewritten); !change.empty())
            return "ExtensionDataChanged rewrites the record's " + change;
        const RecordCopy derived(fTable, left);
        for (int i = 0; i < kFuzzSamples; ++i)
            if (std::string fault = TrySample(left, right, derived, i % 2 != 0); !fault.empty())
                return fault;
    }
    if (std::string held = Held(); !held.empty())
        return held;
    subject.utilities->Debug().Clear();
    return subject.Remains();
}

} // namespace fernwick::validation
