#include "shaders/layers/LayerSlots.h"

MCErr ConnectLayer(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds)
{
    return ConnectSubShaderOrKeep(slot, shader, kinds) == MC_S_OK ? MC_S_OK : 1;
}

bool AskLayerColor(const ConnectedShader& shader, uint32_t kinds, TMCColorRGBA& layerColor, float& value,
    bool& fullArea, ShadingIn& in)
{
    if ((kinds & kOutputColor) != 0) {
        shader->ShadeColor(layerColor, fullArea, in);
        return true;
    }
    if ((kinds & kOutputValue) != 0) {
        shader->ShadeValue(value, fullArea, in);
        layerColor.SetRGB(value);
        return true;
    }
    return false;
}

void ShadeLayer(const ConnectedShader& shader, uint32_t kinds, ShadingOut& result, TMCColorRGBA& layerColor,
    float& value, bool& fullArea, ShadingIn& in)
{
    if ((kinds & kOutputSurface) != 0) {
        shader->ShadeSurface(result, in);
        in.fChannelMask = kAllChannels;
    } else if (AskLayerColor(shader, kinds, layerColor, value, fullArea, in)) {
        result.fColor = layerColor;
    }
}

bool ReadLevel(const ConnectedShader& shader, uint32_t kinds, float& level, TMCColorRGBA& layerColor,
    ShadingOut& fetch, bool& fullArea, ShadingIn& in)
{
    if (ReadNumber(shader, kinds, kOutputColor, level, layerColor, fullArea, in))
        return true;
    if (!shader || (kinds & kOutputSurface) == 0)
        return false;
    shader->ShadeSurface(fetch, in);
    level = Luminance(fetch.fColor);
    return true;
}
