#pragma once
#include "host/parameters/FieldValue.h"

/// A settled value and what it stands for, such as `"KEYM" = Mask`.
std::string ChoiceText(const fernwick::Field& field, const fernwick::Choice& choice);

/// What a field is and does, with the values that documents may set.
/// @param firstOnlyWith  of an array, the first element that the field's condition is for
std::string HelpText(const fernwick::Field& field, size_t firstOnlyWith);
