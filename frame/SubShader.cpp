#include "frame/SubShader.h"
#include "frame/Query.h"

MCErr ConnectSubShader(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds)
{
    if (!slot)
        shader = nullptr;
    return ConnectSubShaderOrKeep(slot, shader, kinds);
}

MCErr ConnectSubShaderOrKeep(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds)
{
    const MCErr status = slot ? Query(*slot, IID_IShellShader, shader) : MC_S_OK;
    kinds = shader ? shader->GetOutputKinds() : 0;
    return status;
}
