#include "shaders/layers/LayerSlots.h"

MCErr ConnectLayer(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds)
{
    return ConnectSubShaderOrKeep(slot, shader, kinds) == MC_S_OK ? MC_S_OK : 1;
}
