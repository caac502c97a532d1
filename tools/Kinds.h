#pragma once
#include "frame/ShadingFlags.h"
#include <string>

/// What a shader offers, such as `value, color`; `none` for nothing.
std::string KindsText(int32_t kinds);

/// What a shader reads of a sample, such as `UV, point (world)`.
std::string NeedsText(const ShadingFlags& flags);
