#pragma once
#include "host/parameters/FieldValue.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <set>

/// Every byte of the record is a field or padding before one that its alignment asks for.
inline void ExpectCovers(const fernwick::ParameterTable& table)
{
    SCOPED_TRACE(table.fName);
    size_t end = 0;
    size_t alignment = 1;
    for (const fernwick::Field& field : table.fFields) {
        const fernwick::FieldLayout layout = fernwick::LayoutOf(field.fType);
        EXPECT_GE(field.fOffset, end) << field.fName << " overlaps, or stands out of order";
        EXPECT_LT(field.fOffset - end, layout.fAlignment)
            << "no field covers the bytes before " << field.fName;
        end = field.fOffset + layout.fSize;
        alignment = std::max(alignment, layout.fAlignment);
    }
    EXPECT_EQ((end + alignment - 1) / alignment * alignment, table.fRecordSize);
}

/// What a user needs to know, and defaults that the table itself would take.
inline void ExpectDescribes(const fernwick::ParameterTable& table, const void* defaults)
{
    SCOPED_TRACE(table.fName);
    EXPECT_FALSE(table.fPurpose.empty());
    std::set<std::string> names;
    std::set<std::string> labels;
    for (const fernwick::Field& field : table.fFields) {
        SCOPED_TRACE(field.fName);
        EXPECT_TRUE(names.insert(field.fName).second);
        EXPECT_TRUE(labels.insert(field.fLabel).second) << field.fLabel;
        EXPECT_FALSE(field.fLabel.empty() || field.fHelp.empty());
        EXPECT_EQ(field.fLabel.find('#'), std::string::npos);
        if (defaults == nullptr || field.fDerived)
            continue;
        const fernwick::FieldValue value = fernwick::ReadField(field, defaults);
        if (field.fType == fernwick::FieldType::kCode) {
            EXPECT_TRUE(std::any_of(field.fChoices.begin(), field.fChoices.end(),
                [&](const fernwick::Choice& choice) { return choice.fValue == std::get<int32_t>(value); }))
                << fernwick::ValueText(field, value);
        } else if (const float* const number = std::get_if<float>(&value)) {
            EXPECT_GE(*number, field.fMinimum.value_or(-INFINITY));
            EXPECT_LE(*number, field.fMaximum.value_or(INFINITY));
        }
    }
}
