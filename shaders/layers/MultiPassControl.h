#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCString.h"

/// Parameters of MultiPassControl, as the host writes and saves them.
struct MultiPassControlParams {
    TMCString255 fPassName[10];    ///< the user's labels, which nothing reads
    int32_t fLevel = Code("LREF"); ///< "LONE" to "LTEN": the ten levels; "LREF": the sub-shader's
    SubShaderSlot fSubShader;      ///< gives the level of "LREF"
};
PIN_LAYOUT(offsetof(MultiPassControlParams, fPassName) == 0);
PIN_LAYOUT(offsetof(MultiPassControlParams, fLevel) == BySize(2800, 2720)
    && offsetof(MultiPassControlParams, fSubShader) == BySize(2808, 2724));
static_assert(sizeof(MultiPassControlParams) == BySize(2816, 2728));

/// The level that tells a MultiPassManager which pass is meant: one of ten constants, or a sub-shader's number.
class MultiPassControl final : public ShaderOf<MultiPassControl, MultiPassControlParams> {
public:
    bool SameParams(const MultiPassControlParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputValue; }
    MCErr ExtensionDataChanged() override;
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;

private:
    ConnectedShader fShader;
    uint32_t fShaderKinds = 0;
    TMCColorRGBA fLayerColor = {0, 0, 0, 0};
};
