#pragma once
#include "frame/Layout.h"
#include "frame/SceneLookup.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"
#include "shaders/AngleBands.h"

using CurvatureBand = AngleBand;

/// Parameters of Curvature, as the host writes them.
struct CurvatureParams {
    TMCString255 fObjectName;  ///< an element that is asked for its place; nothing comes of it
    TMCString255 fSurfaceName; ///< the element whose surface is measured
    CurvatureBand fBands[kAngleBandCount] = {
        {{0.5f, 0, 1, 0}, 0},
        {{0, 0, 1, 0}, 15},
        {{0, 1, 1, 0}, 30},
        {{0, 1, 0, 0}, 45},
        {{1, 1, 0, 0}, 60},
        {{1, 0.5f, 0, 0}, 75},
        {{1, 0, 0, 0}, 90},
    };
    TMCBool fClampTop;                ///< from the last band's angle upward that band weighs 1
    TMCBool fSharedWidth = true;      ///< all bands use the width of the first
    TMCBool fRawAngle;                ///< the running angle as grey
    TMCBool fInvertRaw;               ///< that grey inverted
    float fAngleA = 0;                ///< rotation of the fixed direction about Z, degrees
    float fAngleB = 0;                ///< rotation of the fixed direction about Y, degrees
    int32_t fMixStyle = Code("SMMX"); ///< "SHMX": the sub-shader drives the running angle
    SubShaderSlot fSubShader;
};
PIN_LAYOUT(offsetof(CurvatureParams, fObjectName) == 0
    && offsetof(CurvatureParams, fSurfaceName) == BySize(280, 272));
PIN_LAYOUT(offsetof(CurvatureParams, fBands) == BySize(560, 544)
    && offsetof(CurvatureParams, fClampTop) == BySize(728, 712));
PIN_LAYOUT(offsetof(CurvatureParams, fSharedWidth) == BySize(729, 713)
    && offsetof(CurvatureParams, fRawAngle) == BySize(730, 714));
PIN_LAYOUT(offsetof(CurvatureParams, fInvertRaw) == BySize(731, 715)
    && offsetof(CurvatureParams, fAngleA) == BySize(732, 716));
PIN_LAYOUT(offsetof(CurvatureParams, fAngleB) == BySize(736, 720)
    && offsetof(CurvatureParams, fMixStyle) == BySize(740, 724));
PIN_LAYOUT(
    offsetof(CurvatureParams, fSubShader) == BySize(744, 728) && sizeof(CurvatureParams) == BySize(752, 732));

/// The curvature of a named surface under the sample, from one short ray: the Gaussian curvature in red where
/// it is positive, in blue where it is negative, and green where the ray misses.
class Curvature final : public UnsizedShaderOf<Curvature, CurvatureParams, TBasicShader> {
public:
    /// The measured surface takes no part, nor do the bands' alphas (kept: hosts share shaders that compare
    /// equal).
    bool SameParams(const CurvatureParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsAll & ~kNeedsExtraC); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputColor; }
    MCErr ExtensionDataChanged() override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    ConnectedShader fShader;
    float fRunningAngle = 0; ///< radians; what the samples so far have added up
    float fBandWeights[kAngleBandCount] = {};
    TVector3 fDirectionVector;
    AxisRotation fRotation; ///< scratch of `ExtensionDataChanged`
    uint32_t fShaderKinds = 0;
    float fShaderValue = 0;
    float fLastShaderValue = 0; ///< stands in for a value above 1
    TMCColorRGBA fShaderColor = {0, 0, 0, 0};
    MCCountedPtr<ITreeElement> fTree; ///< these three are the last sample's
    MCCountedPtr<IScene> fScene;
    MCCountedPtr<ITreeElement> fObjectTree;

    void AskForObject(const ShadingIn& in);
    void MoveRunningAngle(bool& fullArea, ShadingIn& in);
};
