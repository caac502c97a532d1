#pragma once
#include "frame/ShadingOut.h"
#include "frame/SubShader.h"

/// A connected layer, with the members of its owner that its answers go through.
struct Layer {
    const ConnectedShader& fShader;
    uint32_t fShaderKinds;
    TMCColorRGBA& fLayerColor; ///< receives a colour; a value takes its alpha from what is there
    float& fValue;             ///< receives a value, and is handed to the shader as it stands

    /// Asks for a colour, else for a value as a grey, into `fLayerColor`.
    /// @return false, with nothing touched, when the layer has neither
    bool AskColor(bool& fullArea, ShadingIn& in) const
    {
        if ((fShaderKinds & kOutputColor) != 0) {
            fShader->ShadeColor(fLayerColor, fullArea, in);
            return true;
        }
        if ((fShaderKinds & kOutputValue) != 0) {
            fShader->ShadeValue(fValue, fullArea, in);
            fLayerColor.SetRGB(fValue);
            return true;
        }
        return false;
    }

    /// Shades into `result`: the layer's surface, which marks all channels in `in`; else its colour or value, which
    /// replaces `fColor` alone. With none of them `result` stays as it came.
    void Shade(ShadingOut& result, bool& fullArea, ShadingIn& in) const
    {
        if ((fShaderKinds & kOutputSurface) != 0) {
            fShader->ShadeSurface(result, in);
            in.fChannelMask = kAllChannels;
        } else if (AskColor(fullArea, in)) {
            result.fColor = fLayerColor;
        }
    }
};
