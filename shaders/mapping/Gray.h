#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"

/// Parameters of Gray, as the host writes and saves them. Shifts are percent.
struct GrayParams {
    float fSaturationShift = 0;   ///< added to the saturation of every colour
    float fRedShift = 0;          ///< for hues near red
    float fGreenShift = 0;        ///< for hues near green
    float fBlueShift = 0;         ///< for hues near blue
    int32_t fMode = Code("GRSC"); ///< "GRSC": luminance; any other: shifted saturation
    SubShaderSlot fSubShader;
    TMCBool fColorSwitches[4] = {}; ///< which colours of a surface change: main, third, second, fourth
};
static_assert(offsetof(GrayParams, fSaturationShift) == 0 && offsetof(GrayParams, fRedShift) == 4);
static_assert(offsetof(GrayParams, fGreenShift) == 8 && offsetof(GrayParams, fBlueShift) == 12);
static_assert(offsetof(GrayParams, fMode) == 16 && offsetof(GrayParams, fSubShader) == BySize(24, 20));
static_assert(offsetof(GrayParams, fColorSwitches) == BySize(32, 24) && sizeof(GrayParams) == BySize(40, 28));

/// Filters what its sub-shader answers, a colour or the four colours of a surface: to their luminance, or to
/// another saturation.
class Gray final : public ShaderOf<Gray, GrayParams> {
public:
    /// The switches take no part.
    bool SameParams(const GrayParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsAll); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputColor | kOutputSurface; }
    MCErr ExtensionDataChanged() override;
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    ConnectedShader fShader;
    uint32_t fShaderKinds = 0;
    float fLuminance = 0;
    float fRedFactor = 0; ///< the shifts as fractions
    float fGreenFactor = 0;
    float fBlueFactor = 0;
    bool fSwitches[4] = {};
    TMCColorRGBA fScratchColor = {0, 0, 0, 0};
    TMCColorRGBA fFallbackColor = {0, 0, 0, 0};

    template <class Color> void FilterChannel(Color& channel, TMCColorRGBA& scratch) const;
    TMCColorRGB ShiftSaturation(float red, float green, float blue) const;
    float WithHueShift(float saturation, float hue) const;
};
