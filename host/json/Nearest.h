#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

/// A hint for a name that nobody knows: `; did you mean "fMode"?` with the likest of the known names, or nothing
/// when none is like it.
std::string NearestHint(std::string_view name, const std::vector<std::string>& known);

} // namespace fernwick
