#pragma once
#include "frame/Colors.h"
#include "host/pictures/PictureFormat.h"
#include <cstdint>
#include <span>

namespace fernwick {

/// Makes of pixels the integers that a PNG of 8 bits holds: colours encoded as sRGB, numbers as they are, normals from
/// -1 to 1, all clamped, with NaN as 0.
/// @param numbers  room for four a pixel
void EncodeBytes(std::span<const TMCColorRGBA> pixels, PictureContent content, uint8_t* numbers);

/// The same of one of 16 bits.
void EncodeUint16s(std::span<const TMCColorRGBA> pixels, PictureContent content, uint16_t* numbers);

} // namespace fernwick
