#pragma once
#include "frame/ShadingFlags.h"
#include <string>
#include <vector>

namespace fernwick {

/// What a shader offers, such as `value, color`; `none` for nothing.
std::string KindsText(int32_t kinds);
std::vector<std::string> KindNames(int32_t kinds);

/// What a shader reads of a sample, such as `UV` and `point (world)`.
std::vector<std::string> NeedNames(const ShadingFlags& flags);

/// Names in a row, with commas; `none` for no name.
std::string Joined(const std::vector<std::string>& names);

} // namespace fernwick
