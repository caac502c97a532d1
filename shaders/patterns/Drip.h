#pragma once
#include "frame/ShaderOf.h"
#include "frame/TMCBool.h"

/// Parameters of Drip, as the host writes and saves them. Lengths are in UV units.
struct DripParams {
    float fCenterU = 0.5f;
    float fCenterV = 0.5f;
    float fAmplitude = 0.5f;       ///< height of the ripple around the base level
    float fRingWidth = 0.1f;       ///< radial; with `fProportional` the factor by which the ring grows
    float fBaseLevel = 0;          ///< value outside the ring
    float fRingStart = 0.2f;       ///< inner radius
    int32_t fWaves = 1;            ///< cosine half cycles from the ring's middle to its edge
    TMCBool fRippled = true;       ///< a damped cosine; false: a flat band
    TMCBool fProportional;         ///< the ring's width grows with its radius
    TMCBool fSecondRing;           ///< draws a second ring, made from the first
    float fSecondAmplitude = 0.7f; ///< factor of amplitude and width of the second ring
    float fSecondStart = 0.5f;     ///< factor of its inner radius
    TMCBool fShowCenter;           ///< a cross on the centre instead of the rings, for placing it
};
static_assert(offsetof(DripParams, fCenterU) == 0 && offsetof(DripParams, fCenterV) == 4);
static_assert(offsetof(DripParams, fAmplitude) == 8 && offsetof(DripParams, fRingWidth) == 12);
static_assert(offsetof(DripParams, fBaseLevel) == 16 && offsetof(DripParams, fRingStart) == 20);
static_assert(offsetof(DripParams, fWaves) == 24 && offsetof(DripParams, fRippled) == 28);
static_assert(offsetof(DripParams, fProportional) == 29 && offsetof(DripParams, fSecondRing) == 30);
static_assert(offsetof(DripParams, fSecondAmplitude) == 32 && offsetof(DripParams, fSecondStart) == 36);
static_assert(offsetof(DripParams, fShowCenter) == 40 && sizeof(DripParams) == 44);

/// The ring that a drop makes on water: a circular band in UV space, filled with a damped cosine ripple. It
/// gives the host no bump of its own.
class Drip final : public ShaderOf<Drip, DripParams> {
public:
    bool SameParams(const DripParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override
    {
        return Ask(flags, kNeedsUV | kNeedsNormalGlobal | kNeedsDerivatives);
    }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputValue | kOutputVector; }
    MCErr ExtensionDataChanged() override { return MC_S_OK; }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;
    float ShadeVector(TVector3& vector, ShadingIn& in) override;

private:
    float fRadius = 0;

    /// Height at `fRadius` of a ring with this inner radius; `kOutsideRing` where there is none.
    float Ring(float start, float width, float amplitude) const;
};
