#include "shaders/patterns/Drip.h"
#include "frame/Numbers.h"

namespace {

/// A value, not a flag: a true height of exactly this counts as outside (kept).
constexpr float kOutsideRing = -100.0f;

constexpr double kTwoPi = 6.28318530717959; // kept: not twice kPi, in the last digits
constexpr double kMinusOneOverPi = -0.3183098861837907;

/// Two crossing bars, 0.4 long and 0.04 wide whatever the parameters are.
bool OnCross(float distanceU, float distanceV)
{
    constexpr double kArm = 0.2;
    constexpr double kHalfThickness = 0.02;
    return (distanceU < kArm && distanceV < kHalfThickness)
        || (distanceV < kArm && distanceU < kHalfThickness);
}

} // namespace

bool Drip::SameParams(const DripParams& other) const
{
    return fParams.fCenterU == other.fCenterU && fParams.fCenterV == other.fCenterV
        && fParams.fAmplitude == other.fAmplitude && fParams.fRingWidth == other.fRingWidth
        && fParams.fBaseLevel == other.fBaseLevel && fParams.fRingStart == other.fRingStart
        && fParams.fWaves == other.fWaves && fParams.fRippled == other.fRippled
        && fParams.fProportional == other.fProportional && fParams.fSecondRing == other.fSecondRing
        && fParams.fSecondAmplitude == other.fSecondAmplitude && fParams.fSecondStart == other.fSecondStart
        && fParams.fShowCenter == other.fShowCenter;
}

float Drip::ShadeValue(float& value, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    const float deltaU = in.fUV[0] - fParams.fCenterU;
    const float deltaV = in.fUV[1] - fParams.fCenterV;
    if (fParams.fShowCenter) {
        value = OnCross(std::fabs(deltaU), std::fabs(deltaV)) ? 1.0f : 0.0f;
        return kFullCoverage;
    }
    fRadius = std::sqrt(deltaU * deltaU + deltaV * deltaV);
    value = Ring(fParams.fRingStart, fParams.fRingWidth, fParams.fAmplitude);
    if (value == kOutsideRing)
        value = fParams.fBaseLevel;
    if (fParams.fSecondRing) {
        const float second = Ring(fParams.fRingStart * fParams.fSecondStart,
            fParams.fRingWidth * std::fabs(fParams.fSecondAmplitude),
            fParams.fAmplitude * fParams.fSecondAmplitude);
        if (second != kOutsideRing)
            value = second; // it wins where it lies; the two aren't summed
    }
    return kFullCoverage;
}

float Drip::Ring(float start, float width, float amplitude) const
{
    const float ratio = width != 0 ? static_cast<float>(1.0 + width) : 1.1f;
    const float end = fParams.fProportional ? start * ratio : start + width;
    const float span = fParams.fProportional ? end - start : width;
    if (fRadius < start || fRadius > end)
        return kOutsideRing;
    if (!fParams.fRippled)
        return fParams.fBaseLevel + amplitude;

    const float share = (fRadius - start) / span; // NaN on a ring of no width
    const float phase = std::fabs(static_cast<float>(kTwoPi * share - kPi));
    const float wave = amplitude * std::cos(phase * static_cast<float>(fParams.fWaves));
    const double envelope = kMinusOneOverPi * phase + 1.0; // 1 in the middle, 0 on both edges
    return static_cast<float>(fParams.fBaseLevel + wave * envelope);
}

float Drip::ShadeVector(TVector3& vector, ShadingIn& in)
{
    vector = in.fNormalGlobal;
    return kFullCoverage;
}
