#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/TMCBool.h"
#include "shaders/scene/ReferencePoint.h"

/// Parameters of Lit, as the host writes and saves them.
struct LitParams {
    TMCString255 fLightName;           ///< name of the light's element in the scene
    TMCBool fInvert;                   ///< 1 minus the amount
    TMCBool fUseLightColor;            ///< the light's colour; the value then stays 0
    TMCBool fFoldAngle;                ///< folds the surface angle by a quarter turn
    TVector2 fAngleRange{20, 160};     ///< bounds of the surface angle, compared as stored with radians
    int32_t fReference = Code("Opt1"); ///< where the light is measured from
    TMCBool fUseMinAngle;              ///< tests the lower bound too
};
PIN_LAYOUT(offsetof(LitParams, fLightName) == 0 && offsetof(LitParams, fInvert) == BySize(280, 272));
PIN_LAYOUT(offsetof(LitParams, fUseLightColor) == BySize(281, 273)
    && offsetof(LitParams, fFoldAngle) == BySize(282, 274));
PIN_LAYOUT(offsetof(LitParams, fAngleRange) == BySize(284, 276)
    && offsetof(LitParams, fReference) == BySize(292, 284));
PIN_LAYOUT(offsetof(LitParams, fUseMinAngle) == BySize(296, 288) && sizeof(LitParams) == BySize(304, 292));

/// How far a named light reaches the surface, as a grey amount or in the light's colour: by the angle to the
/// normal and by the light's own range and cone. No shadows are traced.
class Lit final : public ShaderOf<Lit, LitParams> {
public:
    bool SameParams(const LitParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV | kNeedsNormalGlobal); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputValue | kOutputColor; }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    [[maybe_unused]] float fUnusedFloat = 0;
    [[maybe_unused]] TMCColorRGBA fUnusedColor = {0, 0, 0, 0};
    TVector3 fLocation; ///< the reference point of the current sample

    float Amount(const ShadingIn& in, TMCColorRGBA& color);
    float LightAmount(const ShadingIn& in, TMCColorRGBA& color);
    bool FindLight(const ShadingIn& in, MCCountedPtr<ILight>& light);
    bool AngleCounts(float angle) const;
};
