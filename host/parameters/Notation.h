#pragma once
#include "frame/Colors.h"
#include "frame/Numbers.h"
#include "frame/ShadingFlags.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"
#include "frame/TMCString.h"
#include "frame/Vectors.h"
#include "host/parameters/ParameterTable.h"
#include <cstddef>
#include <filesystem>
#include <type_traits>

// The notation of the tables. A row is FIELD(record, member, label, help), whatever the member's type and
// dimensions, and is refined by the operations of `Row`. RECORDS(record, member, label, rows...) is a member, or
// an array, of a nested record; its label goes before the labels of its fields.

#pragma GCC diagnostic ignored "-Winvalid-offsetof" // of records with a name, see frame/Layout.h

#define FIELD(record, member, label, help)                                                                   \
    fernwick::RowOf<decltype(record::member)>(#member, offsetof(record, member), label, help)

#define RECORDS(record, member, label, ...)                                                                  \
    fernwick::RecordRowOf<decltype(record::member)>(#member, offsetof(record, member), label, {__VA_ARGS__})

namespace fernwick {

template <class Type> inline constexpr FieldType kFieldTypeOf = static_cast<FieldType>(-1);
template <> inline constexpr FieldType kFieldTypeOf<float> = FieldType::kFloat;
template <> inline constexpr FieldType kFieldTypeOf<int32_t> = FieldType::kInt32;
template <> inline constexpr FieldType kFieldTypeOf<uint32_t> = FieldType::kInt32; // codes
template <> inline constexpr FieldType kFieldTypeOf<bool> = FieldType::kBool;
template <> inline constexpr FieldType kFieldTypeOf<TMCBool> = FieldType::kBool;
template <> inline constexpr FieldType kFieldTypeOf<TVector2> = FieldType::kVector2;
template <> inline constexpr FieldType kFieldTypeOf<TVector3> = FieldType::kVector3;
template <> inline constexpr FieldType kFieldTypeOf<TMCColorRGB> = FieldType::kRGB;
template <> inline constexpr FieldType kFieldTypeOf<TMCColorRGBA> = FieldType::kRGBA;
template <> inline constexpr FieldType kFieldTypeOf<TMCString255> = FieldType::kString;
template <> inline constexpr FieldType kFieldTypeOf<SubShaderSlot> = FieldType::kShader;
template <> inline constexpr FieldType kFieldTypeOf<std::filesystem::path> = FieldType::kFile;
template <> inline constexpr FieldType kFieldTypeOf<std::vector<TMCColorRGBA>> = FieldType::kColors;

template <class Member> Row RowAt(const char* name, size_t offset, const char* label)
{
    Row row;
    row.fField.fName = name;
    row.fField.fOffset = offset;
    row.fField.fLabel = label;
    row.fStride = sizeof(std::remove_all_extents_t<Member>);
    if constexpr (std::rank_v < Member >> 0)
        row.fCounts.push_back(std::extent_v<Member, 0>);
    if constexpr (std::rank_v < Member >> 1)
        row.fCounts.push_back(std::extent_v<Member, 1>);
    static_assert(std::rank_v<Member> <= 2);
    return row;
}

template <class Member> Row RowOf(const char* name, size_t offset, const char* label, const char* help)
{
    constexpr FieldType type = kFieldTypeOf<std::remove_all_extents_t<Member>>;
    static_assert(type != static_cast<FieldType>(-1), "no field of a record is of this type");
    Row row = RowAt<Member>(name, offset, label);
    row.fField.fType = type;
    row.fField.fHelp = help;
    return row;
}

template <class Member>
Row RecordRowOf(const char* name, size_t offset, const char* label, std::initializer_list<Row> rows)
{
    Row row = RowAt<Member>(name, offset, label);
    row.fRows = rows;
    return row;
}

} // namespace fernwick
