#include "shaders/layers/Super_mixer.h"

namespace {

void AddGrey(TMCColorRGBA& color, float grey)
{
    color.SetRGB(color.fRed + grey, color.fGreen + grey, color.fBlue + grey);
}

} // namespace

bool Super_mixer::SameParams(const Super_mixerParams& other) const
{
    return SameMix(other) && fParams.fCombineMode == other.fCombineMode;
}

float Super_mixer::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    color.SetRGB(0);
    fValue = 0;
    fShift = 0;
    fullArea = false;
    if (fParams.fBypass) {
        if (!AskControlColor(fullArea, in))
            return 0.0f; // as for an empty control of the mix
        color = fLayerColor;
        return kFullCoverage;
    }
    if (fParams.fCombineMode == Code("ADMD")) {
        AddLayers(color, fullArea, in);
        return kFullCoverage;
    }
    if (fParams.fCombineMode != Code("MXMD"))
        return kFullCoverage;
    if (!ReadControl(kOutputColor, fullArea, in))
        return 0.0f;
    MixLayers(color, fullArea, in);
    return kFullCoverage;
}

void Super_mixer::MixLayers(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    TMCColorRGBA sum = {0, 0, 0, color.fAlpha};
    for (int slot = kFirstLayerSlot; slot < kMixerSlotCount; ++slot) {
        if (!TakeLayer<HalfSineInFloat>(slot))
            continue;
        if ((fShaderKinds[slot] & kOutputColor) != 0) {
            fShader[slot]->ShadeColor(fLayerColor, fullArea, in);
            TMCColorRGBA weighted = fLayerColor;
            weighted *= fWeight;
            sum += weighted;
        } else if ((fShaderKinds[slot] & kOutputValue) != 0) {
            fShader[slot]->ShadeValue(fValue, fullArea, in);
            fValue *= fWeight; // kept: the ranges of all later layers are held against this product
            AddGrey(sum, fValue);
        }
    }
    if (fActiveCount > 1 && !fParams.fSmooth) {
        const auto count = static_cast<float>(fActiveCount);
        sum.SetRGB(sum.fRed / count, sum.fGreen / count, sum.fBlue / count); // the alpha stays a sum
    }
    color = sum;
}

void Super_mixer::AddLayers(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    TMCColorRGBA sum = {0, 0, 0, color.fAlpha};
    for (int slot = kFirstLayerSlot; slot < kMixerSlotCount; ++slot)
        if ((fShaderKinds[slot] & kOutputColor) != 0) {
            fShader[slot]->ShadeColor(fLayerColor, fullArea, in);
            TMCColorRGBA added = fLayerColor;
            added.fAlpha *= fWeight; // kept: the weight that the last range mix left
            sum += added;
        } else if ((fShaderKinds[slot] & kOutputValue) != 0) {
            fShader[slot]->ShadeValue(fValue, fullArea, in);
            AddGrey(sum, fValue);
        }
    color = sum;
}
