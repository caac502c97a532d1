#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/TMCBool.h"
#include "shaders/scene/ReferencePoint.h"

/// Parameters of Translucent, as the host writes and saves them.
struct TranslucentParams {
    TMCString255 fCameraName;            ///< the element that stands for the viewer
    TMCString255 fLightName;             ///< the element that stands for the light
    TMCBool fInvert;                     ///< 1 minus the level
    int32_t fFalloffMode = Code("LINE"); ///< "EXPO": the ramp goes through the curve; any other: linear
    TVector2 fAngleRange{20, 160};       ///< where the ramp starts and ends, compared as stored with radians
    int32_t fReference = Code("Opt1");   ///< from where the two elements are seen
    TVector2 fCurveHandles{0, 100};      ///< the two inner control values of the curve, used as they stand
};
PIN_LAYOUT(offsetof(TranslucentParams, fCameraName) == 0);
PIN_LAYOUT(offsetof(TranslucentParams, fLightName) == BySize(280, 272)
    && offsetof(TranslucentParams, fInvert) == BySize(560, 544));
PIN_LAYOUT(offsetof(TranslucentParams, fFalloffMode) == BySize(564, 548));
PIN_LAYOUT(offsetof(TranslucentParams, fAngleRange) == BySize(568, 552));
PIN_LAYOUT(offsetof(TranslucentParams, fReference) == BySize(576, 560));
PIN_LAYOUT(offsetof(TranslucentParams, fCurveHandles) == BySize(580, 564)
    && sizeof(TranslucentParams) == BySize(592, 572));

/// A grey level from the angle between a light and a viewer as seen from the shaded object: bright where the
/// surface is seen against the light. Any element can stand for either.
class Translucent final : public ShaderOf<Translucent, TranslucentParams> {
public:
    bool SameParams(const TranslucentParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV | kNeedsNormalGlobal); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputColor; }
    MCErr ExtensionDataChanged() override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    float fCurvePoints[4] = {};       ///< control values P0 to P3 of the cubic
    float fCurveCoefficients[3] = {}; ///< k3, k2, k1 of k3 t^3 + k2 t^2 + k1 t + P0
    float fLevel = 0;                 ///< scratch: the angle, then the level
    [[maybe_unused]] float fUnusedFloat = 0;
    [[maybe_unused]] TMCColorRGBA fUnusedColors[2] = {{0, 0, 0, 0}, {0, 0, 0, 0}};
    TVector3 fLocation; ///< the reference point of the current sample

    float Angle(const ShadingIn& in);
    float Level(float angle) const;
    TVector3 DirectionTo(ITreeElement& tree) const;
};
