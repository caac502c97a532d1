#pragma once
#include "host/parameters/ParameterTable.h"

/// What is told of one row of a record: of a field, or of all elements of an array.
struct FieldLine {
    std::string name; ///< such as `fMode`, `fWarpWidth[0..4]` or `fBands[0..6].fCenter`
    fernwick::FieldType type;
    std::string standard; ///< the value that all elements have, else all of them; empty without a record
    std::string unit;
    std::string help; ///< with the values that documents may set
    std::vector<std::string> choices;
};

/// The lines of a record, in order.
/// @param record  a fresh one, whose values are the defaults; null when there is none
std::vector<FieldLine> FieldLines(const fernwick::ParameterTable& table, const void* record);
