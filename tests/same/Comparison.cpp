#include "tests/same/Comparison.h"
#include "host/parameters/FieldValue.h"
#include <bit>
#include <fmt/format.h>

namespace fernwick::same {

using namespace validation;

namespace {

std::string TextOf(const ProbeCall& call) { return fmt::format("{} of {}", call.operation, call.whom); }

} // namespace

std::string DifferenceOfWords(const char* what, const void* left, const void* right, size_t size)
{
    if (std::memcmp(left, right, size) == 0)
        return "";
    for (size_t start = 0; start < size; start += sizeof(uint32_t)) {
        const uint32_t words[] = {WordAt(static_cast<const char*>(left) + start, size - start),
            WordAt(static_cast<const char*>(right) + start, size - start)};
        if (words[0] != words[1])
            return fmt::format("{}, byte {}, is {:#010x} ({}) and {:#010x} ({})", what, start, words[0],
                std::bit_cast<float>(words[0]), words[1], std::bit_cast<float>(words[1]));
    }
    return "";
}

std::string DifferenceOf(Sheet::Operation operation, const Sheet& left, const Sheet& right)
{
    struct Part {
        const char* what;
        const void* left;
        const void* right;
        size_t size;
    };
    const auto part = [](const char* what, const auto& leftRecord, const auto& rightRecord) {
        return Part{what, &leftRecord, &rightRecord, sizeof leftRecord};
    };
    Part parts[] = {part("ShadingIn", left.fIn[operation].fRecord, right.fIn[operation].fRecord),
        part("coverage", left.fCoverage[0], right.fCoverage[0]),
        part("status", left.fProduced, right.fProduced),
        part("fullArea", left.fValueFullArea.fRecord, right.fValueFullArea.fRecord)};
    if (operation != Sheet::kSurface)
        parts[1] = part("coverage", left.fCoverage[operation], right.fCoverage[operation]);
    switch (operation) {
    case Sheet::kValue:
        parts[2] = part("value", left.fValue.fRecord, right.fValue.fRecord);
        break;
    case Sheet::kColor:
        parts[2] = part("colour", left.fColor.fRecord, right.fColor.fRecord);
        parts[3] = part("fullArea", left.fColorFullArea.fRecord, right.fColorFullArea.fRecord);
        break;
    case Sheet::kVector:
        parts[2] = part("vector", left.fVector.fRecord, right.fVector.fRecord);
        break;
    default:
        if (!SameResult(left.fResult.fRecord, right.fResult.fRecord))
            parts[1] = part("ShadingOut", left.fResult.fRecord, right.fResult.fRecord);
    }
    for (const Part& one : parts)
        if (std::string difference = DifferenceOfWords(one.what, one.left, one.right, one.size);
            !difference.empty())
            return difference;
    return "";
}

std::string DifferenceOf(std::span<const ProbeCall> left, std::span<const ProbeCall> right)
{
    for (size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
        if (std::strcmp(left[i].operation, right[i].operation) != 0 || left[i].whom != right[i].whom)
            return fmt::format("call {} is {} and {}", i + 1, TextOf(left[i]), TextOf(right[i]));
        if (left[i].with != right[i].with)
            return fmt::format("call {}, {}, is asked with something else", i + 1, TextOf(left[i]));
        if (left[i].received != right[i].received)
            return fmt::format(
                "call {}, {}, is handed other contents of its results", i + 1, TextOf(left[i]));
    }
    if (left.size() == right.size())
        return "";
    const std::span<const ProbeCall> longer = left.size() > right.size() ? left : right;
    return fmt::format("{} and {} calls, first more {}", left.size(), right.size(),
        TextOf(longer[std::min(left.size(), right.size())]));
}

RecordSpans::RecordSpans(const ParameterTable& table) : fTable(table)
{
    for (const Field& field : table.fFields) {
        const FieldPlace place = PlaceOf(field);
        if (!fSpans.empty() && fSpans.back().start + fSpans.back().size == place.start)
            fSpans.back().size += place.size;
        else
            fSpans.push_back({&field, place.start, place.size});
    }
}

std::string RecordSpans::DifferenceOf(const char* left, const char* right) const
{
    for (const Span& span : fSpans) {
        if (DifferenceOfWords("", left + span.start, right + span.start, span.size).empty())
            continue;
        for (const Field* field = span.field; field != fTable.fFields.data() + fTable.fFields.size();
             ++field) {
            const FieldPlace place = PlaceOf(*field);
            if (!DifferenceOfWords("", left + place.start, right + place.start, place.size).empty())
                return fmt::format("the record's {} is {} and {}", field->fName,
                    ValueText(*field, ReadField(*field, left)), ValueText(*field, ReadField(*field, right)));
        }
    }
    return "";
}

void RecordSpans::Copy(const Field& field, const char* from, char* to)
{
    if (field.fType == FieldType::kShader) {
        *reinterpret_cast<SubShaderSlot*>(to + field.fOffset)
            = *reinterpret_cast<const SubShaderSlot*>(from + field.fOffset);
        return;
    }
    const FieldPlace place = PlaceOf(field);
    std::memcpy(to + place.start, from + place.start, place.size);
}

} // namespace fernwick::same
