#pragma once
#include <cstdint>

inline constexpr int32_t kLastIlluminantPreset = 14;
inline constexpr int32_t kCustomIlluminantPreset = 15; ///< the user's own temperature

/// Colour temperatures in kelvin of presets 1 to 14.
inline constexpr float kIlluminantTemperatures[kLastIlluminantPreset]
    = {3000, 3500, 4000, 4500, 5000, 5500, 6000, 6500, 7000, 7500, 8000, 8500, 9000, 9300};
