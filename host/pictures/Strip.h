#pragma once
#include "host/pictures/Picture.h"
#include <span>

namespace fernwick {

/// Pictures of one height from left to right, without their added channels.
/// @param pictures  one or more, of one content
Picture SideBySide(std::span<const Picture> pictures);

} // namespace fernwick
