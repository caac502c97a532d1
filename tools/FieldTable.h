#pragma once
#include "tools/FieldLines.h"

/// The fields of a record as a table with a head, help and choices in the last column, or below each field where
/// that column would be narrow.
/// @param width  of the table, in columns; at least 60 are used
std::string FieldTable(const std::vector<FieldLine>& lines, size_t width);
