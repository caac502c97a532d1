#include "shaders/mapping/Gray.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t kGrayScale = Code("GRSC");
constexpr float kNoHue = 1000; // degrees, beyond every range of hues

/// One channel of a colour between `low` and `high`. Kept: each correction of the hue is made once only, so
/// `kNoHue` stays above 360 and gives `low`; a gray that gains saturation comes out darker.
float HueChannel(float low, float high, float hue)
{
    if (hue < 0)
        hue += 360.0f;
    if (hue > 360.0f)
        hue -= 360.0f;
    if (hue < 60.0f)
        return low + (high - low) * hue / 60.0f;
    if (hue < 180.0f)
        return high;
    if (hue < 240.0f)
        return low + (high - low) * (240.0f - hue) / 60.0f;
    return low;
}

float Fraction(float percent) { return static_cast<float>(percent / 100.0); }

void CopyColor(TMCColorRGBA& target, const TMCColorRGB& source)
{
    target.SetRGB(source.fRed, source.fGreen, source.fBlue);
}

void CopyColor(TMCColorRGBA& target, const TMCColorRGBA& source)
{
    target.SetRGB(source.fRed, source.fGreen, source.fBlue);
    target.fAlpha = source.fAlpha;
}

} // namespace

bool Gray::SameParams(const GrayParams& other) const
{
    return fParams.fSaturationShift == other.fSaturationShift && fParams.fRedShift == other.fRedShift
        && fParams.fGreenShift == other.fGreenShift && fParams.fBlueShift == other.fBlueShift
        && fParams.fMode == other.fMode && fParams.fSubShader == other.fSubShader;
}

MCErr Gray::ExtensionDataChanged()
{
    const MCErr status = ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds);
    std::copy_n(fParams.fColorSwitches, 4, fSwitches);
    fRedFactor = Fraction(fParams.fRedShift);
    fGreenFactor = Fraction(fParams.fGreenShift);
    fBlueFactor = Fraction(fParams.fBlueShift);
    return status;
}

float Gray::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    color.SetRGB(0);
    fFallbackColor = {0, 0, 0, color.fAlpha};

    if (fParams.fMode == kGrayScale) {
        if (!fShader)
            return 0.0f; // kept: the other mode covers without a sub-shader
        if (!ReadNumber(fShader, fShaderKinds, kOutputColor, fLuminance, fScratchColor, fullArea, in))
            fLuminance = 0;
        const float alpha = (fShaderKinds & kOutputColor) != 0 ? fScratchColor.fAlpha : color.fAlpha;
        color = {fLuminance, fLuminance, fLuminance, alpha};
        return kFullCoverage;
    }

    if (!fShader || (fShaderKinds & kOutputColor) == 0)
        return kFullCoverage;
    fShader->ShadeColor(fScratchColor, fullArea, in);
    const TMCColorRGB shifted
        = ShiftSaturation(fScratchColor.fRed, fScratchColor.fGreen, fScratchColor.fBlue);
    color = {shifted.fRed, shifted.fGreen, shifted.fBlue, fScratchColor.fAlpha};
    return kFullCoverage;
}

int32_t Gray::ShadeSurface(ShadingOut& result, ShadingIn& in)
{
    if (!fShader || (fShaderKinds & kOutputSurface) == 0)
        return 1;
    fShader->ShadeSurface(result, in);
    in.fChannelMask = kAllChannels;

    TMCColorRGBA scratch = fScratchColor;
    if (fSwitches[0])
        FilterChannel(result.fColor, scratch);
    if (fSwitches[1])
        FilterChannel(result.fThirdColor, scratch);
    if (fSwitches[2])
        FilterChannel(result.fSecondColor, scratch);
    if (fSwitches[3])
        FilterChannel(result.fFourthColor, scratch);
    fScratchColor = scratch; // a sub-shader that leaves its colour finds the last switched one here
    return 1;
}

/// Changes red, green and blue; an alpha passes through.
template <class Color> void Gray::FilterChannel(Color& channel, TMCColorRGBA& scratch) const
{
    if (fParams.fMode == kGrayScale) {
        CopyColor(scratch, channel);
        const float luminance = Luminance(channel);
        channel.fRed = luminance;
        channel.fGreen = luminance;
        channel.fBlue = luminance;
        return;
    }
    const TMCColorRGB shifted = ShiftSaturation(channel.fRed, channel.fGreen, channel.fBlue);
    channel.fRed = shifted.fRed;
    channel.fGreen = shifted.fGreen;
    channel.fBlue = shifted.fBlue;
}

/// To hue, lightness and saturation, and back with the shifted saturation.
TMCColorRGB Gray::ShiftSaturation(float red, float green, float blue) const
{
    if (std::isnan(green))
        return {red, green, blue};

    float largest = green; // green first: a NaN red or blue takes no part
    float smallest = green;
    for (const float other : {red, blue}) {
        if (largest < other)
            largest = other;
        if (other < smallest)
            smallest = other;
    }
    const float lightness = (largest + smallest) / 2.0f;
    float saturation = 0;
    float hue = kNoHue;
    if (largest != smallest) {
        const float spread = largest - smallest;
        saturation = 0.5 >= lightness ? spread / (largest + smallest) : spread / (2.0f - largest - smallest);
        if (red == largest)
            hue = (green - blue) / spread * 60.0f;
        else if (green == largest)
            hue = (2.0f + (blue - red) / spread) * 60.0f;
        else if (blue == largest)
            hue = (4.0f + (red - green) / spread) * 60.0f;
        if (hue < 0)
            hue += 360.0f;
    }

    saturation = WithHueShift(saturation + fParams.fSaturationShift / 100.0f, hue);
    if (saturation < 0)
        saturation = 0;
    if (saturation == 0)
        return {lightness, lightness, lightness};

    const float high = 0.5 >= lightness ? lightness * (1.0f + saturation)
                                        : lightness + saturation - lightness * saturation;
    const float low = 2.0f * lightness - high;
    return {
        HueChannel(low, high, hue + 120.0f), HueChannel(low, high, hue), HueChannel(low, high, hue - 120.0f)};
}

/// Each primary's shift holds within 60 degrees of its hue and fades over the next 60; `kNoHue` gets none.
float Gray::WithHueShift(float saturation, float hue) const
{
    if (hue >= 0 && hue <= 60.0f)
        return saturation + fRedFactor + hue / 60.0f * fGreenFactor;
    if (hue > 60.0f && hue <= 120.0f)
        return saturation + fGreenFactor + (60.0f - (hue - 60.0f)) / 60.0f * fRedFactor;
    if (hue > 120.0f && hue <= 180.0f)
        return saturation + fGreenFactor + (hue - 120.0f) / 60.0f * fBlueFactor;
    if (hue > 180.0f && hue <= 240.0f)
        return saturation + fBlueFactor + (60.0f - (hue - 180.0f)) / 60.0f * fGreenFactor;
    if (hue > 240.0f && hue <= 300.0f)
        return saturation + fBlueFactor + (hue - 240.0f) / 60.0f * fRedFactor;
    if (hue > 300.0f && hue <= 360.0f)
        return saturation + fRedFactor + (60.0f - (hue - 300.0f)) / 60.0f * fBlueFactor;
    return saturation;
}
