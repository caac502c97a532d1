#include "optics/ColorSystem.h"
#include "optics/RobertsonLines.h"
#include <cmath>

namespace {

constexpr double kLabThreshold = 216.0 / 24389.0; // where the cube root meets the straight line
constexpr float kNoLight = 1e-20f;                // X, Y and Z below this have no temperature

float Cube(float number) { return number * number * number; }

Triple<double> XYZInDouble(double x, double y, double Y) { return {x * Y / y, Y, (1 - x - y) * Y / y}; }

/// XYZ at Y = 1, without a guard for a y of 0.
Float3 UnitXYZ(const Float3& xyY)
{
    const auto [x, y, Y] = xyY;
    return {x / y, 1, (1 - x - y) / y};
}

// Bradford cone responses of X, Y and Z.
constexpr Triple<double> kConesOfX = {0.8951, -0.7502, 0.0389};
constexpr Triple<double> kConesOfY = {0.2664, 1.7135, -0.0685};
constexpr Triple<double> kConesOfZ = {-0.1614, 0.0367, 1.0296};

Triple<double> Cones(const Triple<double>& xyz)
{
    return kConesOfX * xyz[0] + kConesOfY * xyz[1] + kConesOfZ * xyz[2];
}

/// ITU-R BT.709.
float EncodeRec709(float value)
{
    const float slope = (1.099f * std::pow(0.018f, 0.45f) - 0.099f) / 0.018f;
    return value < 0.018f ? slope * value : 1.099f * std::pow(value, 0.45f) - 0.099f;
}

/// IEC 61966-2-1.
float EncodeSRGB(float value)
{
    return value <= 0.0031308f ? 12.92f * value : 1.055f * std::pow(value, 0.41666666f) - 0.055f;
}

float ChannelOfHue(float m1, float m2, float hue)
{
    if (hue < 0)
        hue += 1;
    else if (hue > 1)
        hue -= 1;
    if (6 * hue < 1)
        return m1 + (m2 - m1) * 6 * hue;
    if (2 * hue < 1)
        return m2;
    if (3 * hue < 2)
        return m1 + (m2 - m1) * (2.0f / 3 - hue) * 6;
    return m1;
}

} // namespace

Float3 XyYToXYZ(const Float3& xyY)
{
    const auto [x, y, Y] = xyY;
    if (y == 0)
        return {0, 0, 0};
    return {x * Y / y, Y, (1 - x - y) * Y / y};
}

float LabCurve(float ratio)
{
    if (ratio > kLabThreshold)
        return std::pow(ratio, 0.33333334f);
    return (16 + 24389 * ratio / 27) / 116;
}

Float3 XYZToLab(const Float3& xyz, const Float3& white)
{
    const float fy = LabCurve(xyz[1] / white[1]);
    const float fx = LabCurve(xyz[0] / white[0]);
    const float fz = LabCurve(xyz[2] / white[2]);
    return {116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz)};
}

Float3 LabToXYZ(const Float3& lab, const Float3& white)
{
    const auto [L, a, b] = lab;
    const float yr = L > 8 ? Cube(L + 16) / 1560896 : 27 * L / 24389; // 116 cubed
    // kept: the inverse slope 24389/27 would be expected in the second branch
    const float fy
        = yr > kLabThreshold ? (L + 16) / 116 : (static_cast<float>(kLabThreshold) * yr + 16) / 116;
    const float fx = static_cast<float>(a / 500.0 + fy);
    const float fz = static_cast<float>(fy - b / 200.0);
    const auto ratio = [](float f) {
        const float cube = Cube(f);
        return cube > kLabThreshold ? cube : 27 * (116 * f - 16) / 24389;
    };
    return {white[0] * ratio(fx), white[1] * yr, white[2] * ratio(fz)};
}

Float3 AdaptToWhite(const ColorSystem& source, const ColorSystem& destination, float x, float y, float Y)
{
    const auto cones = Cones(XYZInDouble(x, y, Y));
    const auto from = Cones(XYZInDouble(source.xyYWhite[0], source.xyYWhite[1], 1));
    const auto to = Cones(XYZInDouble(destination.xyYWhite[0], destination.xyYWhite[1], 1));
    const Triple<double> adapted
        = {cones[0] * to[0] / from[0], cones[1] * to[1] / from[1], cones[2] * to[2] / from[2]};
    const auto xyz = SolveByCramer(kConesOfX, kConesOfY, kConesOfZ, adapted);
    return {static_cast<float>(xyz[0]), static_cast<float>(xyz[1]), static_cast<float>(xyz[2])};
}

Float3 XyYToRGB(const ColorSystem& primaries, const ColorSystem& white, float x, float y, float Y)
{
    const Float3 xyz = primaries.xyYWhite == white.xyYWhite ? Float3{x * Y / y, Y, (1 - x - y) * Y / y}
                                                            : AdaptToWhite(primaries, white, x, y, Y);
    const Float3 red = UnitXYZ(primaries.xyYRed);
    const Float3 green = UnitXYZ(primaries.xyYGreen);
    const Float3 blue = UnitXYZ(primaries.xyYBlue);
    const auto [r, g, b] = SolveByCramer(red, green, blue, xyz);
    const auto [whiteR, whiteG, whiteB] = SolveByCramer(red, green, blue, UnitXYZ(white.xyYWhite));
    return {r / whiteR, g / whiteG, b / whiteB};
}

void EncodeChannel(const ColorSystem& system, float& value)
{
    if (system.fGamma == 0)
        value = EncodeRec709(value); // kept: the power below follows, with exponent 1/0
    if (system.fGamma == 1) {
        value = EncodeSRGB(value);
        return;
    }
    const float exponent = 1 / system.fGamma;
    value = value < 0 ? -std::pow(-value, exponent) : std::pow(value, exponent);
}

void EncodeColor(const ColorSystem& system, float& r, float& g, float& b)
{
    EncodeChannel(system, r);
    EncodeChannel(system, g);
    EncodeChannel(system, b);
}

int32_t CorrelatedTemperature(float X, float Y, float Z, float& result)
{
    if (X < kNoLight && Y < kNoLight && Z < kNoLight)
        return -1;
    const double sum = X + 15.0 * Y + 3.0 * Z;
    const float u = static_cast<float>(4.0 * X / sum);
    const float v = static_cast<float>(6.0 * Y / sum);

    float distance = 0;
    float previous = 0;
    int32_t row = 0;
    for (; row < Robertson::kLines; ++row) {
        const auto& line = Robertson::uvt[row];
        distance = (v - line.v) - line.t * (u - line.u);
        if (row > 0 && ((distance < 0 && previous >= 0) || (distance >= 0 && previous < 0)))
            break;
        previous = distance;
    }
    if (row == Robertson::kLines)
        return -1;

    const auto length = [](float slope) { return std::sqrt(1 + slope * slope); };
    distance /= length(Robertson::uvt[row].t);
    previous /= length(Robertson::uvt[row - 1].t);
    const float p = previous / (previous - distance);
    const float from = Robertson::rt[row - 1];
    result = 1 / (from + (Robertson::rt[row] - from) * p);
    return 0;
}

ColorHSL RGBToHSL(const Float3& rgb)
{
    const auto [r, g, b] = rgb;
    // A NaN counts only as the first of the three.
    float hi = r;
    float lo = r;
    for (const float channel : {g, b}) {
        if (channel > hi)
            hi = channel;
        if (channel < lo)
            lo = channel;
    }
    const float d = hi - lo;
    const float lightness = (hi + lo) / 2;

    float saturation = 0;
    if (hi != lo)
        saturation = lightness < 0.5f ? d / (hi + lo) : d / (2 - hi - lo);

    // In this order, the last match wins. A grey has d = 0 and so an undefined hue. NaN channels match none.
    float hue = 0;
    if (r == hi)
        hue = (g - b) / d;
    if (g == hi)
        hue = 2 + (b - r) / d;
    if (b == hi)
        hue = 4 + (r - g) / d;
    if (hue < 0)
        hue += 6;
    return {hue / 6, lightness, saturation};
}

Float3 HSLToRGB(const ColorHSL& hsl)
{
    const auto [hue, lightness, saturation] = hsl;
    if (saturation == 0)
        return {lightness, lightness, lightness};
    const float m2
        = lightness < 0.5f ? lightness * (1 + saturation) : lightness + saturation - lightness * saturation;
    const float m1 = 2 * lightness - m2;
    return {ChannelOfHue(m1, m2, hue + 1.0f / 3), ChannelOfHue(m1, m2, hue),
        ChannelOfHue(m1, m2, hue - 1.0f / 3)};
}
