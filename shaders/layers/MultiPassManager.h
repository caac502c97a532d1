#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCString.h"

/// Parameters of MultiPassManager, as the host writes and saves them.
struct MultiPassManagerParams {
    TMCString255 fPassName[10];   ///< the user's labels, which nothing reads
    SubShaderSlot fSubShader[11]; ///< the selector, then the shaders of passes 1 to 10
};
PIN_LAYOUT(offsetof(MultiPassManagerParams, fPassName) == 0);
PIN_LAYOUT(offsetof(MultiPassManagerParams, fSubShader) == BySize(2800, 2720)
    && sizeof(MultiPassManagerParams) == BySize(2888, 2764));

/// A ten-way switch of surfaces: the tenth in which the selector's number falls is the pass, read anew in every
/// sample.
class MultiPassManager final : public ShaderOf<MultiPassManager, MultiPassManagerParams> {
public:
    bool SameParams(const MultiPassManagerParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsAll); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputSurface; }
    MCErr ExtensionDataChanged() override;
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override;

private:
    ConnectedShader fShader[11];
    TMCColorRGBA fLayerColor = {0, 0, 0, 0};
    float fValue = 0;
    uint32_t fShaderKinds[11] = {};
};
