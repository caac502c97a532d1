#include "shaders/AngleBands.h"
#include "frame/Numbers.h"
#include <algorithm>
#include <cmath>
#include <cstring>

/// The weight of a band at `angle` radians: 1 at its centre, falling by `width` per radian to 0. The centre goes
/// from degrees to radians in double and is rounded to float.
static float BandWeight(float angle, float center, float width)
{
    const float radians = static_cast<float>(center * kRadiansPerDegree);
    const float weight = 1.0f - width * std::fabs(angle - radians);
    return weight > 0 ? weight : 0; // NaN weighs nothing
}

void AxisRotation::SetAboutY(float degrees)
{
    const double angle = degrees * kRadiansPerDegree;
    fCosine = static_cast<float>(std::cos(angle));
    fSine = static_cast<float>(std::sin(angle));
    const float rows[3][3] = {{fCosine, 0, fSine}, {0, 1, 0}, {-fSine, 0, fCosine}};
    std::memcpy(fMatrix, rows, sizeof rows);
}

void AxisRotation::SetAboutZ(float degrees)
{
    const double angle = degrees * kRadiansPerDegree;
    fCosine = static_cast<float>(std::cos(angle));
    fSine = static_cast<float>(std::sin(angle));
    const float rows[3][3] = {{fCosine, -fSine, 0}, {fSine, fCosine, 0}, {0, 0, 1}};
    std::memcpy(fMatrix, rows, sizeof rows);
}

TVector3 AxisRotation::Apply(const TVector3& vector) const
{
    TVector3 turned;
    for (uint32_t i = 0; i < 3; ++i)
        turned[i] = vector[0] * fMatrix[0][i] + vector[1] * fMatrix[1][i] + vector[2] * fMatrix[2][i];
    return turned;
}

TVector3 DirectionFromAngles(float elevation, float azimuth, AxisRotation& scratch)
{
    TVector3 direction(0.5f, 0, 0);
    scratch.SetAboutY(elevation);
    direction = scratch.Apply(direction);
    scratch.SetAboutZ(azimuth);
    direction = scratch.Apply(direction);
    Normalize(direction);
    return direction;
}

bool SameBands(const AngleBand (&left)[kAngleBandCount], const AngleBand (&right)[kAngleBandCount])
{
    return std::equal(left, left + kAngleBandCount, right, [](const AngleBand& one, const AngleBand& two) {
        return one.fColor.fRed == two.fColor.fRed && one.fColor.fGreen == two.fColor.fGreen
            && one.fColor.fBlue == two.fColor.fBlue && one.fWidth == two.fWidth && one.fCenter == two.fCenter;
    });
}

void WeighBands(const AngleBand (&bands)[kAngleBandCount], bool sharedWidth, bool holdLast, float angle,
    float (&weights)[kAngleBandCount])
{
    constexpr int kLast = kAngleBandCount - 1;
    for (int i = 0; i < kAngleBandCount; ++i)
        weights[i] = BandWeight(angle, bands[i].fCenter, bands[sharedWidth ? 0 : i].fWidth);
    if (holdLast && angle >= bands[kLast].fCenter * kRadiansPerDegree)
        weights[kLast] = 1;
}

TMCColorRGB SumBands(const AngleBand (&bands)[kAngleBandCount], const float (&weights)[kAngleBandCount])
{
    TMCColorRGB sum = TMCColorRGB::kBlack;
    for (int i = 0; i < kAngleBandCount; ++i) {
        const TMCColorRGBA& color = bands[i].fColor;
        sum += {weights[i] * color.fRed, weights[i] * color.fGreen, weights[i] * color.fBlue};
    }
    return sum;
}
