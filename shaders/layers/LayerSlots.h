#pragma once
#include "frame/ShadingOut.h"
#include "frame/SubShader.h"

/// The refresh of a layer. Its shader stays in use after the slot was emptied.
/// @return 1 when the query failed, whatever its status; else 0
MCErr ConnectLayer(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds);

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
bool AskLayerColor(const ConnectedShader& shader, uint32_t kinds, TMCColorRGBA& layerColor, float& value,
    bool& fullArea, ShadingIn& in);

/// Shades a layer into `result`: its surface, which marks all channels in `in`; else its colour or value, which
/// replaces `fColor` alone. With none of them `result` stays as it came.
void ShadeLayer(const ConnectedShader& shader, uint32_t kinds, ShadingOut& result, TMCColorRGBA& layerColor,
    float& value, bool& fullArea, ShadingIn& in);

/// Reads the level of a pass: as `ReadNumber` does from a colour or a value, else the luminance of a surface's
/// colour. The channel mask of `in` stays as it is.
/// @param fetch  receives the surface, when one is asked for
/// @return false, with nothing touched, when there is no shader or it has none of the three
bool ReadLevel(const ConnectedShader& shader, uint32_t kinds, float& level, TMCColorRGBA& layerColor,
    ShadingOut& fetch, bool& fullArea, ShadingIn& in);
