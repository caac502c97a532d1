#pragma once
#include "frame/ShadingOut.h"
#include "frame/SubShader.h"

/// The refresh of a layer. Its shader stays in use after the slot was emptied.
/// @return 1 when the query failed, whatever its status; else 0
inline MCErr ConnectLayer(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds)
{
    return ConnectSubShaderOrKeep(slot, shader, kinds) == MC_S_OK ? MC_S_OK : 1;
}

/// The same for all slots of a record; a failed one doesn't keep the others from being connected.
template <size_t kSlots>
MCErr ConnectLayers(
    const SubShaderSlot (&slots)[kSlots], ConnectedShader (&shaders)[kSlots], uint32_t (&kinds)[kSlots])
{
    MCErr status = MC_S_OK;
    for (size_t slot = 0; slot < kSlots; ++slot)
        status |= ConnectLayer(slots[slot], shaders[slot], kinds[slot]);
    return status;
}

/// Asks for a colour, else for a value as a grey whose alpha is the one that `layerColor` already had.
/// @param value  receives the value, and is handed to the shader as it stands
/// @return false, with nothing touched, when `kinds` has neither
inline bool AskLayerColor(const ConnectedShader& shader, uint32_t kinds, TMCColorRGBA& layerColor,
    float& value, bool& fullArea, ShadingIn& in)
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

/// Shades a layer into `result`: its surface, which marks all channels in `in`; else its colour or value, which
/// replaces `fColor` alone. With none of them `result` stays as it came.
inline void ShadeLayer(const ConnectedShader& shader, uint32_t kinds, ShadingOut& result,
    TMCColorRGBA& layerColor, float& value, bool& fullArea, ShadingIn& in)
{
    if ((kinds & kOutputSurface) != 0) {
        shader->ShadeSurface(result, in);
        in.fChannelMask = kAllChannels;
    } else if (AskLayerColor(shader, kinds, layerColor, value, fullArea, in)) {
        result.fColor = layerColor;
    }
}

/// Reads the level of a pass: as `ReadNumber` does from a colour or a value, else the luminance of a surface's
/// colour. No channel of that surface is passed on, so the channel mask of `in` stays as it is.
/// @return false, with nothing touched, when there is no shader or it has none of the three
inline bool ReadLevel(const ConnectedShader& shader, uint32_t kinds, float& level, TMCColorRGBA& layerColor,
    bool& fullArea, ShadingIn& in)
{
    if (ReadNumber(shader, kinds, kOutputColor, level, layerColor, fullArea, in))
        return true;
    if (!shader || (kinds & kOutputSurface) == 0)
        return false;
    ShadingOut fetch;
    shader->ShadeSurface(fetch, in);
    level = Luminance(fetch.fColor);
    return true;
}
