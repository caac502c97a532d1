#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"
#include "shaders/scene/ReferencePoint.h"

/// Parameters of Proximity, as the host writes and saves them. Distances are scene units.
struct ProximityParams {
    TMCString255 fTargetName;          ///< name of the target; in group mode the text that names begin with
    TMCBool fUseShader;                ///< lets the sub-shader move the distance
    int32_t fShaderStrength = 1;       ///< weight of the sub-shader's value
    int32_t fReference = Code("Opt1"); ///< where the distance is measured from
    TMCBool fAxisX = true;             ///< false takes the axis out of the distance
    TMCBool fAxisY = true;
    TMCBool fAxisZ = true;
    float fMaxDistance = 10;      ///< at and beyond this distance the value is 0
    float fFalloff = 0;           ///< width of the ramp that ends there; 0: one ramp from 0
    float fOffset = 0;            ///< subtracted from the distance
    TMCBool fSingleObject = true; ///< one named element; false: the nearest of a group
    SubShaderSlot fSubShader;
};
PIN_LAYOUT(
    offsetof(ProximityParams, fTargetName) == 0 && offsetof(ProximityParams, fUseShader) == BySize(280, 272));
PIN_LAYOUT(offsetof(ProximityParams, fShaderStrength) == BySize(284, 276));
PIN_LAYOUT(offsetof(ProximityParams, fReference) == BySize(288, 280)
    && offsetof(ProximityParams, fAxisX) == BySize(292, 284));
PIN_LAYOUT(offsetof(ProximityParams, fAxisY) == BySize(293, 285)
    && offsetof(ProximityParams, fAxisZ) == BySize(294, 286));
PIN_LAYOUT(offsetof(ProximityParams, fMaxDistance) == BySize(296, 288)
    && offsetof(ProximityParams, fFalloff) == BySize(300, 292));
PIN_LAYOUT(offsetof(ProximityParams, fOffset) == BySize(304, 296)
    && offsetof(ProximityParams, fSingleObject) == BySize(308, 300));
PIN_LAYOUT(
    offsetof(ProximityParams, fSubShader) == BySize(312, 304) && sizeof(ProximityParams) == BySize(320, 308));

/// How near the shaded object lies to another one, from 1 when close to 0 at the limit. Distances are between
/// origins; no mesh is looked at, and nothing of the scene is kept between samples.
class Proximity final : public ShaderOf<Proximity, ProximityParams> {
public:
    /// Falloff and mode take no part (kept: hosts share shaders that compare equal).
    bool SameParams(const ProximityParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override
    {
        return Ask(flags, kNeedsUV | kNeedsPointGlobal | kNeedsPointLocal);
    }
    int32_t GetOutputKinds() override { return kOutputValue; }
    MCErr ExtensionDataChanged() override;
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;

private:
    ConnectedShader fShader;
    uint32_t fShaderKinds = 0;
    float fShaderValue = 0;
    float fLastShaderValue = 0; ///< stands in for a value above 1
    TMCString255 fTargetNameCopy;
    int32_t fTargetNameLength = 0;
    TVector3 fLocation; ///< the reference point of the current sample
    float fRampStart = 0;

    float DistanceToTarget(const MCCountedPtr<IScene>& scene) const;
    float DistanceToGroup(const MCCountedPtr<IScene>& scene) const;
    float DistanceTo(ITreeElement& tree) const;
    float ShaderShift(bool& fullArea, ShadingIn& in);
    float ValueAt(float distance) const;
};
