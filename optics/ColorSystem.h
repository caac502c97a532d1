#pragma once
#include "optics/Triple.h"
#include <cstddef>
#include <cstdint>

/// An RGB colour system. Each xyY holds a chromaticity x, y and a luminance Y relative to white.
struct ColorSystem {
    const char* fName;
    Float3 xyYRed;
    Float3 xyYGreen;
    Float3 xyYBlue;
    Float3 xyYWhite;
    Float3 xyYBlack;
    float fGamma; ///< 1: the sRGB curve. 0: the Rec. 709 curve. Any other value: a power of 1 / fGamma
};
static_assert(offsetof(ColorSystem, fGamma) == sizeof(const char*) + 5 * sizeof(Float3));

/// A y of 0 gives (0, 0, 0).
Float3 XyYToXYZ(const Float3& xyY);

/// The function within CIE 1976 L*a*b*: the cube root, and a straight line up to 216/24389.
float LabCurve(float ratio);

/// CIE 1976 L*a*b* against the XYZ of a white.
Float3 XYZToLab(const Float3& xyz, const Float3& white);
/// Not the exact inverse of XYZToLab for L* up to 8.
Float3 LabToXYZ(const Float3& lab, const Float3& white);

/// XYZ of a colour after the Bradford adaptation from the white of `source` to the white of `destination`.
/// Reads only x and y of the two whites.
Float3 AdaptToWhite(const ColorSystem& source, const ColorSystem& destination, float x, float y, float Y);

/// Linear R, G, B of a colour in the primaries of `primaries`, scaled so that the white of `white` at Y = 1
/// is (1, 1, 1). The colour is first adapted if the two whites differ. Not limited to 0 to 1.
Float3 XyYToRGB(const ColorSystem& primaries, const ColorSystem& white, float x, float y, float Y);

/// Encodes a linear channel for display, in place, by the curve that `fGamma` of the system names.
void EncodeChannel(const ColorSystem& system, float& value);
void EncodeColor(const ColorSystem& system, float& r, float& g, float& b);

/// Correlated colour temperature in kelvin (Robertson 1968), from about 1667 K. Returns 0, or -1 with
/// `result` untouched when the colour is black or no pair of isotemperature lines holds it.
int32_t CorrelatedTemperature(float X, float Y, float Z, float& result);

/// Hue, lightness, saturation, each 0 to 1. The hue of a grey is undefined (NaN).
struct ColorHSL {
    float fHue;
    float fLightness;
    float fSaturation;
};
ColorHSL RGBToHSL(const Float3& rgb);
/// An undefined hue gives the darkest channel value to all three.
Float3 HSLToRGB(const ColorHSL& hsl);
