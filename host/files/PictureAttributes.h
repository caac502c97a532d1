#pragma once

namespace fernwick {

// What a picture file tells of itself beyond its format.

// A text in the header of an EXR, which holds its colours multiplied by the alpha unless it says so.
constexpr const char* kAlphaAttribute = "fernwick:alpha";
constexpr const char* kStraightAlpha = "straight";
constexpr const char* kPremultipliedAlpha = "premultiplied";

// The description of a TIFF whose integers are plain numbers, not encoded as sRGB.
constexpr const char* kLinearDescription = "fernwick:encoding=linear";

} // namespace fernwick
