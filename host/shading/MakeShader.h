#pragma once
#include "host/library/Library.h"
#include "host/library/ShaderWrapper.h"
#include "host/parameters/ParameterTable.h"

namespace fernwick {

/// Makes an object of a class of the pack; one without a route is made by the module that has it. Null when the
/// library refuses. Throws `LibraryError` when there is no such module.
MCCountedPtr<ShaderWrapper> MakeShader(const Library& library, const ParameterTable& table);

} // namespace fernwick
