#include "frame/AngleBands.h"
#include "frame/Numbers.h"
#include <cmath>
#include <cstring>

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

float BandCenter(float degrees) { return static_cast<float>(degrees * kRadiansPerDegree); }

float BandWeight(float angle, float center, float width)
{
    const float weight = 1.0f - width * std::fabs(angle - BandCenter(center));
    return weight > 0 ? weight : 0; // NaN weighs nothing
}
