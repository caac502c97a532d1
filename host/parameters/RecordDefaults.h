#pragma once
#include <string>

namespace fernwick {

struct ParameterTable;

/// The first field of a new object's record that isn't as it is to be, with what was expected and what came; empty
/// for none. For classes with a route.
std::string WrongDefault(const ParameterTable& table, const void* record);

} // namespace fernwick
