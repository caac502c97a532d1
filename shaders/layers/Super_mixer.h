#pragma once
#include "frame/Layout.h"
#include "frame/TMCBool.h"
#include "shaders/layers/RangeMix.h"

/// Parameters of Super_mixer, as the host writes and saves them.
struct Super_mixerParams {
    int32_t fMixStyle = Code("SMMX"); ///< "SHMX": slot 1 shifts the control; any other: the control as it is
    int32_t fCombineMode = Code("MXMD"); ///< "MXMD": by range; "ADMD": all layers added; any other: none
    TVector2 fRange[10] = {{0, 10}, {10, 20}, {20, 30}, {30, 40}, {40, 50}, {50, 60}, {60, 70}, {70, 80},
        {80, 90}, {90, 100}};             ///< of each layer, in percent of the control
    TMCBool fSmooth = false;              ///< edges fade, and overlapping layers are not averaged
    TMCBool fLinearEdge = false;          ///< a straight fade, else half a sine
    TMCBool fLastIsDefault = false;       ///< the tenth layer takes what no earlier one took
    int32_t fSmoothWidth = 10;            ///< of the fade, percent of the range's width
    int32_t fDistribution = Code("MADI"); ///< "AUDI": equal ranges for the connected layers
    int32_t fShiftAmount = 10;            ///< percentage points per unit of the shift's distance from 0.5
    int32_t fColorLevel = 0;              ///< percent, derived from `fColor`; the shading never reads it
    TMCColorRGBA fColor = {0, 0, 0, 0};   ///< feeds `fColorLevel` only
    TMCBool fBypass = false;              ///< the control's colour and nothing else
    SubShaderSlot fSubShader[kMixerSlotCount]; ///< control, shift, ten layers
};
static_assert(offsetof(Super_mixerParams, fMixStyle) == 0 && offsetof(Super_mixerParams, fCombineMode) == 4);
static_assert(offsetof(Super_mixerParams, fRange) == 8 && offsetof(Super_mixerParams, fSmooth) == 88);
static_assert(
    offsetof(Super_mixerParams, fLinearEdge) == 89 && offsetof(Super_mixerParams, fLastIsDefault) == 90);
static_assert(
    offsetof(Super_mixerParams, fSmoothWidth) == 92 && offsetof(Super_mixerParams, fDistribution) == 96);
static_assert(
    offsetof(Super_mixerParams, fShiftAmount) == 100 && offsetof(Super_mixerParams, fColorLevel) == 104);
static_assert(offsetof(Super_mixerParams, fColor) == 108 && offsetof(Super_mixerParams, fBypass) == 124);
static_assert(
    offsetof(Super_mixerParams, fSubShader) == 128 && sizeof(Super_mixerParams) == BySize(224, 176));

/// Mixes the colours of up to ten layers: those whose percentage range holds a control value, weighted at the
/// edges of the ranges; or the sum of all.
class Super_mixer final : public RangeMix<Super_mixer, Super_mixerParams> {
public:
    bool SameParams(const Super_mixerParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputColor; }
    MCErr ExtensionDataChanged() override { return RefreshMix(); }
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    void MixLayers(TMCColorRGBA& color, bool& fullArea, ShadingIn& in);
    void AddLayers(TMCColorRGBA& color, bool& fullArea, ShadingIn& in);
};
