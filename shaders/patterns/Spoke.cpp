#include "shaders/patterns/Spoke.h"
#include "frame/FloatRemainder.h"
#include "frame/Numbers.h"

namespace {

constexpr double kSquareRootOfTwo = 1.4142135623730951;

} // namespace

bool Spoke::SameParams(const SpokeParams& other) const
{
    return fParams.fCenterU == other.fCenterU && fParams.fCenterV == other.fCenterV
        && fParams.fIntensity == other.fIntensity && fParams.fWidth == other.fWidth
        && fParams.fCount == other.fCount && fParams.fRotation == other.fRotation
        && fParams.fSoftness == other.fSoftness && fParams.fInnerRadius == other.fInnerRadius
        && fParams.fOuterRadius == other.fOuterRadius && fParams.fInnerFade == other.fInnerFade
        && fParams.fOuterFade == other.fOuterFade && fParams.fConstantWidth == other.fConstantWidth
        && fParams.fFillCenter == other.fFillCenter;
}

MCErr Spoke::ExtensionDataChanged()
{
    fSector = static_cast<float>(360.0 / fParams.fCount); // infinite for a count of 0: nothing is inside
    fHalfSector = fSector / 2;
    fHardPart = 1 - fParams.fSoftness;
    return MC_S_OK;
}

float Spoke::ShadeValue(float& value, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    value = 0;
    fDeltaU = in.fUV[0] - fParams.fCenterU;
    fDeltaV = in.fUV[1] - fParams.fCenterV;
    if (fDeltaU == 0 && fDeltaV == 0)
        return kFullCoverage; // the centre point itself is never part of a spoke
    fRadius = std::sqrt(fDeltaU * fDeltaU + fDeltaV * fDeltaV);

    if (fParams.fConstantWidth) {
        const float arcDegrees = fParams.fWidth / 20.0f;
        fSine = static_cast<float>(arcDegrees * kRadiansPerDegree / fRadius);
        if (fSine > 1) { // so near the centre that the spokes merge
            if (!fParams.fFillCenter)
                return kFullCoverage;
            value = 1; // and stays: the half width is NaN, so nothing counts as inside
        }
        fHalfWidth = static_cast<float>(kDegreesPerRadian * std::asin(fSine) / 2.0);
    } else {
        fHalfWidth = static_cast<float>((fParams.fWidth - fRadius * fParams.fTaper) / 2.0);
    }
    fLowerBound = fHalfSector - fHalfWidth;
    fUpperBound = fHalfSector + fHalfWidth;

    // Out to the corners of a square around the outer circle, on purpose.
    if (fRadius < fParams.fInnerRadius || fRadius > fParams.fOuterRadius * kSquareRootOfTwo)
        return kFullCoverage;
    FindInSector();
    if (fInside)
        value = Height();
    return kFullCoverage;
}

/// Every sector holds one spoke, centred in it. Of a spoke of no width nothing is inside.
void Spoke::FindInSector()
{
    const float fromAxisV = std::atan2(fDeltaU, fDeltaV);
    fAngle = static_cast<float>((fromAxisV + kPi) * kDegreesPerRadian + fParams.fRotation);
    fAngle = FloatRemainder(fAngle, fSector);
    fInside = false;
    if (fAngle > fLowerBound && fHalfSector >= fAngle) {
        fT = (fHalfSector - fAngle) / fHalfWidth;
        fInside = true;
    }
    if (fAngle > fHalfSector && fUpperBound >= fAngle) {
        fT = (fAngle - fHalfSector) / fHalfWidth;
        fInside = true;
    }
}

float Spoke::Height() const
{
    float height
        = fHardPart > fT ? fParams.fIntensity : (1 - (fT - fHardPart) / (1 - fHardPart)) * fParams.fIntensity;
    if (fParams.fInnerFade > fRadius)
        height *= (fRadius - fParams.fInnerRadius) / (fParams.fInnerFade - fParams.fInnerRadius);
    else if (fRadius > fParams.fOuterFade)
        height *= (fParams.fOuterRadius - fRadius) / (fParams.fOuterRadius - fParams.fOuterFade);
    return height;
}
