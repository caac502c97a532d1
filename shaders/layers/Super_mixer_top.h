#pragma once
#include "frame/Layout.h"
#include "frame/TMCBool.h"
#include "shaders/layers/RangeMix.h"

/// Parameters of Super_mixer_top, as the host writes and saves them.
struct Super_mixer_topParams {
    int32_t fMixStyle = Code("SMMX"); ///< "SHMX": slot 1 shifts the control; any other: the control as it is
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
static_assert(
    offsetof(Super_mixer_topParams, fMixStyle) == 0 && offsetof(Super_mixer_topParams, fRange) == 4);
static_assert(
    offsetof(Super_mixer_topParams, fSmooth) == 84 && offsetof(Super_mixer_topParams, fLinearEdge) == 85);
static_assert(offsetof(Super_mixer_topParams, fLastIsDefault) == 86);
static_assert(offsetof(Super_mixer_topParams, fSmoothWidth) == 88);
static_assert(offsetof(Super_mixer_topParams, fDistribution) == 92);
static_assert(offsetof(Super_mixer_topParams, fShiftAmount) == 96);
static_assert(
    offsetof(Super_mixer_topParams, fColorLevel) == 100 && offsetof(Super_mixer_topParams, fColor) == 104);
static_assert(offsetof(Super_mixer_topParams, fBypass) == 120
    && offsetof(Super_mixer_topParams, fSubShader) == BySize(128, 124));
static_assert(sizeof(Super_mixer_topParams) == BySize(224, 172));

/// Mixes whole surfaces: the layers whose percentage range holds a control value, weighted at the edges of the
/// ranges.
class Super_mixer_top final : public RangeMix<Super_mixer_top, Super_mixer_topParams> {
public:
    bool SameParams(const Super_mixer_topParams& other) const { return SameMix(other); }
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsAll); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputSurface; }
    MCErr ExtensionDataChanged() override;
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override;

private:
    bool fAnyLayer = false;

    void AddLayer(int slot, ShadingOut& accum_shadingout, ShadingOut& fetch, bool& fullArea, ShadingIn& in);
};
