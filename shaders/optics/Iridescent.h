#pragma once
#include "frame/Layout.h"
#include "frame/SceneLookup.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"
#include "shaders/AngleBands.h"

using IridescentBand = AngleBand;

/// Parameters of Iridescent, as the host writes and saves them.
struct IridescentParams {
    TMCString255 fObjectName; ///< the element that gives the reference direction
    IridescentBand fBands[kAngleBandCount] = {
        {{0.5f, 0, 1, 0}, 0},
        {{0, 0, 1, 0}, 15},
        {{0, 1, 1, 0}, 30},
        {{0, 1, 0, 0}, 45},
        {{1, 1, 0, 0}, 60},
        {{1, 0.5f, 0, 0}, 75},
        {{1, 0, 0, 0}, 90},
    };
    TMCBool fHoldLastBand = false;          ///< past the last centre the last band keeps weight 1
    TMCBool fSameWidth = true;              ///< all bands use the width of the first
    TMCBool fGrey = false;                  ///< the angle as a grey level instead of the bands
    TMCBool fInvertGrey = false;            ///< that grey level inverted
    float fAzimuth = 0;                     ///< second rotation of the fixed direction, degrees
    float fElevation = 0;                   ///< first rotation of the fixed direction, degrees
    uint32_t fMixStyle = Code("SMMX");      ///< "SHMX": the sub-shader offsets the angle; else nothing
    uint32_t fReferenceMode = Code("RFVT"); ///< "OBJT": towards `fObjectName`; else the fixed direction
    SubShaderSlot fSubShader;
};
PIN_LAYOUT(
    offsetof(IridescentParams, fObjectName) == 0 && offsetof(IridescentParams, fBands) == BySize(280, 272));
PIN_LAYOUT(offsetof(IridescentParams, fHoldLastBand) == BySize(448, 440));
PIN_LAYOUT(offsetof(IridescentParams, fSameWidth) == BySize(449, 441)
    && offsetof(IridescentParams, fGrey) == BySize(450, 442));
PIN_LAYOUT(offsetof(IridescentParams, fInvertGrey) == BySize(451, 443)
    && offsetof(IridescentParams, fAzimuth) == BySize(452, 444));
PIN_LAYOUT(offsetof(IridescentParams, fElevation) == BySize(456, 448)
    && offsetof(IridescentParams, fMixStyle) == BySize(460, 452));
PIN_LAYOUT(offsetof(IridescentParams, fReferenceMode) == BySize(464, 456));
PIN_LAYOUT(offsetof(IridescentParams, fSubShader) == BySize(472, 460)
    && sizeof(IridescentParams) == BySize(480, 464));

/// Colours a surface by the angle between its normal and a reference direction, with seven overlapping bands.
/// There is no wave optics in it.
class Iridescent final : public ShaderOf<Iridescent, IridescentParams> {
public:
    /// The reference mode and the bands' alphas take no part.
    bool SameParams(const IridescentParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV | kNeedsNormalGlobal); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputColor; }
    MCErr ExtensionDataChanged() override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    ConnectedShader fShader;
    uint32_t fShaderKinds = 0;
    float fAngle = 0; ///< radians
    float fWeights[kAngleBandCount] = {};
    TVector3 fReferenceVector; ///< the last one stays in force when its element isn't found
    AxisRotation fRotation;
    float fSubValue = 0;
    float fLastSubValue = 0;
    TMCColorRGBA fSubColor = {0, 0, 0, 0};
    MCCountedPtr<ITreeElement> fTree; ///< kept with the next two until a sample looks them up again
    MCCountedPtr<IScene> fScene;
    MCCountedPtr<ITreeElement> fObjectTree;

    void FollowObject(const ShadingIn& in);
    void OffsetAngle(bool& fullArea, ShadingIn& in);
};
