#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"

/// Parameters of Key, as the host writes and saves them. Ranges are lower and upper offset from the key colour
/// in percent.
struct KeyParams {
    TVector2 fRedRange{-1, 1};
    TVector2 fGreenRange{-1, 1};
    TVector2 fBlueRange{-1, 1};
    int32_t fMode = Code("KEYM");          ///< "KEYM": a mask; any other: the sub-shader's colour
    TMCColorRGBA fKeyColor = {0, 1, 0, 0}; ///< centre of the box; the alpha takes no part in it
    SubShaderSlot fSubShader;
};
static_assert(offsetof(KeyParams, fRedRange) == 0 && offsetof(KeyParams, fGreenRange) == 8);
static_assert(offsetof(KeyParams, fBlueRange) == 16 && offsetof(KeyParams, fMode) == 24);
static_assert(offsetof(KeyParams, fKeyColor) == 28 && offsetof(KeyParams, fSubShader) == BySize(48, 44));
static_assert(sizeof(KeyParams) == BySize(56, 48));

/// Keys a colour out of its sub-shader: black or transparent inside a box around the key colour, white or
/// opaque outside.
class Key final : public ShaderOf<Key, KeyParams> {
public:
    bool SameParams(const KeyParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputColor; }
    MCErr ExtensionDataChanged() override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    ConnectedShader fShader;
    uint32_t fShaderKinds = 0;
    TVector2 fRedBox; ///< lower then upper bound, colour units
    TVector2 fGreenBox;
    TVector2 fBlueBox;
    TMCColorRGBA fSubColor = {0, 0, 0, 0};
    TMCColorRGBA fFallbackColor = {0, 0, 0, 0};
};
