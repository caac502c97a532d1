#pragma once
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
