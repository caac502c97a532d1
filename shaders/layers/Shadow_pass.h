#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"

/// Parameters of Shadow_pass, as the host writes and saves them.
struct Shadow_passParams {
    TMCBool fSuppress = false; ///< no surface is produced
    SubShaderSlot fSubShader;  ///< surface, colour or value to pass through
};
static_assert(
    offsetof(Shadow_passParams, fSuppress) == 0 && offsetof(Shadow_passParams, fSubShader) == BySize(8, 4));
static_assert(sizeof(Shadow_passParams) == BySize(16, 8));

/// Passes its sub-shader through as a surface, or produces none.
class Shadow_pass final : public ShaderOf<Shadow_pass, Shadow_passParams> {
public:
    bool SameParams(const Shadow_passParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsAll); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputSurface; }
    MCErr ExtensionDataChanged() override;
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override;

private:
    ConnectedShader fShader;
    TMCColorRGBA fLayerColor = {0, 0, 0, 0};
    float fValue = 0;
    uint32_t fShaderKinds = 0;
};
