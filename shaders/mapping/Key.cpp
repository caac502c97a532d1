#include "shaders/mapping/Key.h"

namespace {

/// Bounds of one axis: percent offsets around the key colour's channel, in double, stored as float.
TVector2 BoxAxis(const TVector2& range, float keyChannel)
{
    return {
        static_cast<float>(range[0] / 100.0 + keyChannel), static_cast<float>(range[1] / 100.0 + keyChannel)};
}

/// Both ends belong to the box; NaN lies outside.
bool Holds(const TVector2& box, float channel) { return channel >= box[0] && box[1] >= channel; }

} // namespace

bool Key::SameParams(const KeyParams& other) const
{
    return fParams.fRedRange == other.fRedRange && fParams.fGreenRange == other.fGreenRange
        && fParams.fBlueRange == other.fBlueRange && fParams.fKeyColor.Equals(other.fKeyColor)
        && fParams.fMode == other.fMode && fParams.fSubShader == other.fSubShader;
}

MCErr Key::ExtensionDataChanged()
{
    const MCErr status = ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds);
    fRedBox = BoxAxis(fParams.fRedRange, fParams.fKeyColor.fRed);
    fGreenBox = BoxAxis(fParams.fGreenRange, fParams.fKeyColor.fGreen);
    fBlueBox = BoxAxis(fParams.fBlueRange, fParams.fKeyColor.fBlue);
    return status;
}

float Key::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    color = {1, 0, 0, 1};
    fFallbackColor = color;
    if (!fShader || fShaderKinds == 0)
        return 0.0f;

    fShader->ShadeColor(fSubColor, fullArea, in); // whatever its kinds
    const bool inside = Holds(fRedBox, fSubColor.fRed) && Holds(fGreenBox, fSubColor.fGreen)
        && Holds(fBlueBox, fSubColor.fBlue);
    const float mask = inside ? 0.0f : 1.0f;
    if (fParams.fMode == Code("KEYM"))
        color = {mask, mask, mask, fSubColor.fAlpha};
    else
        color = {fSubColor.fRed, fSubColor.fGreen, fSubColor.fBlue, mask};
    return kFullCoverage;
}
