#pragma once
#include "frame/ShaderOf.h"
#include "frame/TMCBool.h"

/// Parameters of Spoke, as the host writes and saves them. Lengths are in UV units, angles in degrees.
struct SpokeParams {
    float fCenterU = 0.5f;
    float fCenterV = 0.5f;
    float fIntensity = 1;       ///< value inside a spoke
    float fWidth = 30;          ///< angle of a spoke; with `fConstantWidth` 20 is a degree's arc at radius 1
    int32_t fCount = 4;         ///< spokes; 0 draws none, and at most a filled centre
    int32_t fRotation = 0;      ///< of the wheel
    float fTaper = 0;           ///< degrees of width lost per unit of radius
    float fSoftness = 0.2f;     ///< share of the half width over which an edge falls to 0, 0 to 1
    float fInnerRadius = 0.02f; ///< nothing below it
    float fOuterRadius = 1;     ///< end of the wheel
    float fInnerFade = 0.1f;    ///< radius at which the inner fade ends
    float fOuterFade = 0.5f;    ///< radius at which the outer fade begins
    TMCBool fConstantWidth;     ///< parallel sides instead of a constant angle
    TMCBool fFillCenter;        ///< with `fConstantWidth`: fills the area where the spokes merge
};
static_assert(offsetof(SpokeParams, fCenterU) == 0 && offsetof(SpokeParams, fCenterV) == 4);
static_assert(offsetof(SpokeParams, fIntensity) == 8 && offsetof(SpokeParams, fWidth) == 12);
static_assert(offsetof(SpokeParams, fCount) == 16 && offsetof(SpokeParams, fRotation) == 20);
static_assert(offsetof(SpokeParams, fTaper) == 24 && offsetof(SpokeParams, fSoftness) == 28);
static_assert(offsetof(SpokeParams, fInnerRadius) == 32 && offsetof(SpokeParams, fOuterRadius) == 36);
static_assert(offsetof(SpokeParams, fInnerFade) == 40 && offsetof(SpokeParams, fOuterFade) == 44);
static_assert(offsetof(SpokeParams, fConstantWidth) == 48 && offsetof(SpokeParams, fFillCenter) == 49);
static_assert(sizeof(SpokeParams) == 52);

/// A wheel in UV space: soft-edged spokes around a centre, faded between an inner and an outer radius.
class Spoke final : public ShaderOf<Spoke, SpokeParams> {
public:
    /// The taper takes no part (kept).
    bool SameParams(const SpokeParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputValue; }
    MCErr ExtensionDataChanged() override;
    /// Beyond the outer radius the fade goes on below 0, up to the corners of the square around the wheel.
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;

private:
    float fRadius = 0;
    float fSector = 0; ///< degrees from spoke to spoke
    float fHalfSector = 0;
    float fLowerBound = 0; ///< of the spoke within its sector, degrees
    float fUpperBound = 0;
    float fT = 0;        ///< 0 on the spoke's centre line, 1 on its edge
    float fHardPart = 0; ///< share of the half width that doesn't fall off
    float fDeltaU = 0;
    float fDeltaV = 0;
    float fAngle = 0;     ///< within the sector, degrees
    float fHalfWidth = 0; ///< of the spoke at the sample's radius, degrees
    float fSine = 0;
    bool fInside = false;

    void FindInSector();
    float Height() const;
};
