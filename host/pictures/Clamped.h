#pragma once
#include <algorithm>

namespace fernwick {

/// From 0 to 1; NaN gives 0.
inline float Clamped(float number) { return number >= 0 ? std::min(number, 1.0f) : 0.0f; }

} // namespace fernwick
