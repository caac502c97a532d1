#pragma once
#include "host/pictures/PictureFormat.h"
#include <array>
#include <optional>

/// A part of a picture as Python has it: left, top, right and bottom in pixels; the ends aren't in it. None for all.
using Region = std::optional<std::array<int, 4>>;

inline std::optional<fernwick::PictureRegion> PictureRegionOf(const Region& region)
{
    if (!region)
        return std::nullopt;
    const auto [left, top, right, bottom] = *region;
    return fernwick::PictureRegion{left, top, right, bottom};
}
