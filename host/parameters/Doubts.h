#pragma once
#include "host/parameters/FieldValue.h"
#include <span>

namespace fernwick {

/// What makes one doubt that the settings of a shader do what they are meant to: a code that is none of the choices,
/// a number outside a range that the shader doesn't keep to, a field that counts only together with another one. Of
/// several settings of a field the last one counts. One text a field, which begins with its name and tells what is
/// expected; elements of an array that count only together with another field are told at the first.
/// @param standard  the record of a new object; null where it isn't known
std::vector<std::string> FindDoubts(std::span<const FieldSetting> settings, const void* standard);

} // namespace fernwick
