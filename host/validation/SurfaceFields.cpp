#include "host/validation/SurfaceFields.h"
#include "host/parameters/ParameterTable.h"
#include "host/validation/CallLog.h"
#include "host/validation/Statements.h"
#include <cstring>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <vector>

namespace fernwick::validation {

namespace {

enum class Number { kFloat, kInt32, kByte };

struct ResultField {
    std::string_view name;
    size_t offset; ///< in the record, bytes
    Number number = Number::kFloat;
    size_t count = 1; ///< of its numbers

    constexpr size_t Size() const { return count * (number == Number::kByte ? 1 : sizeof(float)); }
};

constexpr size_t kSampled = offsetof(ShadingOut, fSampledBlock);
constexpr size_t kSingle = offsetof(ShadingOut, fSingleBlock);
constexpr size_t kVector = offsetof(ShadingOut, fVectorBlock);

constexpr ResultField kFields[] = {
    {"fColor", offsetof(ShadingOut, fColor), Number::kFloat, 3},
    {"fColor.fAlpha", offsetof(ShadingOut, fColor) + offsetof(TMCColorRGBA, fAlpha)},
    {"fSecondColor", offsetof(ShadingOut, fSecondColor), Number::kFloat, 3},
    {"fScalarA", offsetof(ShadingOut, fScalarA)},
    {"fScalarB", offsetof(ShadingOut, fScalarB)},
    {"fScalarC", offsetof(ShadingOut, fScalarC)},
    {"fScalarD", offsetof(ShadingOut, fScalarD)},
    {"fThirdColor", offsetof(ShadingOut, fThirdColor), Number::kFloat, 3},
    {"fVectorChannel", offsetof(ShadingOut, fVectorChannel), Number::kFloat, 3},
    {"fCoverage", offsetof(ShadingOut, fCoverage)},
    {"fSampledBlock.fColors", kSampled + offsetof(ShadingTripleBlock, fColors), Number::kFloat, 9},
    {"fSampledBlock.fSampleCount", kSampled + offsetof(ShadingTripleBlock, fSampleCount), Number::kInt32},
    {"fSampledBlock.fFirstLevel", kSampled + offsetof(ShadingTripleBlock, fFirstLevel)},
    {"fSampledBlock.fSecondLevel", kSampled + offsetof(ShadingTripleBlock, fSecondLevel)},
    {"fSampledBlock.fSwitch", kSampled + offsetof(ShadingTripleBlock, fSwitch), Number::kByte},
    {"fSampledBlock.fThirdLevel", kSampled + offsetof(ShadingTripleBlock, fThirdLevel)},
    {"fSampledBlock.fFourthLevel", kSampled + offsetof(ShadingTripleBlock, fFourthLevel)},
    {"fSampledBlock.fMode", kSampled + offsetof(ShadingTripleBlock, fMode), Number::kInt32},
    {"fSingleBlock.fColor", kSingle + offsetof(ShadingSingleBlock, fColor), Number::kFloat, 3},
    {"fSingleBlock.fSampleCount", kSingle + offsetof(ShadingSingleBlock, fSampleCount), Number::kInt32},
    {"fSingleBlock.fLevel", kSingle + offsetof(ShadingSingleBlock, fLevel)},
    {"fSingleBlock.fSwitch", kSingle + offsetof(ShadingSingleBlock, fSwitch), Number::kByte},
    {"fSingleBlock.fCount", kSingle + offsetof(ShadingSingleBlock, fCount), Number::kInt32},
    {"fSingleBlock.fSecondLevel", kSingle + offsetof(ShadingSingleBlock, fSecondLevel)},
    {"fSingleBlock.fThirdLevel", kSingle + offsetof(ShadingSingleBlock, fThirdLevel)},
    {"fVectorBlock.fFirst", kVector + offsetof(ShadingVectorBlock, fFirst), Number::kFloat, 3},
    {"fVectorBlock.fSecond", kVector + offsetof(ShadingVectorBlock, fSecond), Number::kFloat, 3},
    {"fVectorBlock.fLevels", kVector + offsetof(ShadingVectorBlock, fLevels), Number::kFloat, 2},
    {"fVectorBlock.fThirdLevel", kVector + offsetof(ShadingVectorBlock, fThirdLevel)},
    {"fVectorBlock.fLocal", kVector + offsetof(ShadingVectorBlock, fLocal), Number::kByte},
    {"fFourthColor", offsetof(ShadingOut, fFourthColor), Number::kFloat, 3},
    {"fFullArea", offsetof(ShadingOut, fFullArea), Number::kByte},
    {"fShadingNormal", offsetof(ShadingOut, fShadingNormal), Number::kFloat, 3},
};

/// Bytes of the record that are in no field.
constexpr size_t Padding()
{
    size_t padding = sizeof(ShadingOut);
    for (const ResultField& field : kFields)
        padding -= field.Size();
    return padding;
}
static_assert(Padding() == 4 * 3);

template <class Value> std::string NumbersText(const char* start, size_t count)
{
    std::vector<Value> numbers(count);
    std::memcpy(numbers.data(), start, count * sizeof(Value));
    return count == 1 ? fmt::format("{}", numbers[0]) : fmt::format("[{}]", fmt::join(numbers, ", "));
}

std::string Text(const ResultField& field, const ShadingOut& result)
{
    const char* const start = reinterpret_cast<const char*>(&result) + field.offset;
    switch (field.number) {
    case Number::kFloat:
        return NumbersText<float>(start, field.count);
    case Number::kInt32:
        return NumbersText<int32_t>(start, field.count);
    default:
        return NumbersText<uint8_t>(start, field.count);
    }
}

bool Same(const ResultField& field, const ShadingOut& left, const ShadingOut& right)
{
    const auto* const leftBytes = reinterpret_cast<const char*>(&left);
    const auto* const rightBytes = reinterpret_cast<const char*>(&right);
    return std::memcmp(leftBytes + field.offset, rightBytes + field.offset, field.Size()) == 0;
}

} // namespace

std::string_view WrittenFields(
    const ParameterTable& table, const void* record, const CallLog& calls, int32_t produced)
{
    using namespace surface_fields;
    const std::vector<ProbeCall> asked = calls.OfShaders();
    const std::string_view last = asked.empty() ? "" : asked.back().operation;
    switch (StatementOf(table).surface) {
    case SurfaceWay::kAbsent:
        return kDefault;
    case SurfaceWay::kStraight:
        return last == "ShadeSurface" ? kPlugged
            : last == "ShadeColor"    ? kColor
            : last == "ShadeValue"    ? kGrey
                                      : kNone;
    case SurfaceWay::kSwitched:
        return produced == 0 ? kAlpha : last == "ShadeSurface" ? kPlugged : last.empty() ? kNone : kColor;
    case SurfaceWay::kPass: // the first to be asked is the selector, the second the pass
        if (produced == 0)
            return kNone;
        return asked.size() > 1 && last == "ShadeSurface" ? kPlugged : kAll;
    case SurfaceWay::kSum:
        if (produced == 0)
            return kNone;
        const bool bypasses = static_cast<const char*>(record)[table.Find("fBypass")->fOffset] != 0;
        return bypasses ? kColor : kAll;
    }
    return kNone;
}

ShadingOut ResultHolding(float number)
{
    ShadingOut result;
    auto* const bytes = reinterpret_cast<char*>(&result);
    for (const ResultField& field : kFields)
        for (size_t i = 0; i < field.count; ++i) {
            const float real = number--;
            const auto integer = static_cast<int32_t>(real);
            char* const place = bytes + field.offset;
            if (field.number == Number::kFloat)
                std::memcpy(place + i * sizeof real, &real, sizeof real);
            else if (field.number == Number::kInt32)
                std::memcpy(place + i * sizeof integer, &integer, sizeof integer);
            else
                place[i] = 1; // some of them are flags
        }
    return result;
}

std::string DifferentField(const ShadingOut& result, const ShadingOut& other)
{
    for (const ResultField& field : kFields)
        if (!Same(field, result, other))
            return fmt::format("{} {}", field.name, Text(field, result));
    return "";
}

std::string WrongField(std::string_view written, const ShadedResult& left, const ShadedResult& right)
{
    for (const ResultField& field : kFields) {
        if (written == surface_fields::kAll || HasWord(written, field.name)) {
            if (!Same(field, left.after, right.after))
                return fmt::format("ShadeSurface leaves its result's {}: expected one result whatever was "
                                   "there, came {} and {}",
                    field.name, Text(field, left.after), Text(field, right.after));
            continue;
        }
        for (const ShadedResult* const result : {&left, &right})
            if (!Same(field, result->before, result->after))
                return fmt::format(
                    "ShadeSurface writes its result's {}: expected {}, which was there, came {}", field.name,
                    Text(field, result->before), Text(field, result->after));
    }
    return "";
}

} // namespace fernwick::validation
