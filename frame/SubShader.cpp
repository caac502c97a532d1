#include "frame/SubShader.h"
#include "frame/Query.h"

MCErr QuerySubShader(const SubShaderSlot& slot, ConnectedShader& shader)
{
    if (slot)
        return Query(*slot, IID_IShellShader, shader);
    shader = nullptr;
    return MC_S_OK;
}

MCErr ConnectSubShader(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds)
{
    const MCErr status = QuerySubShader(slot, shader);
    kinds = KindsOf(shader);
    return status;
}

MCErr ConnectSubShaderOrKeep(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds)
{
    const MCErr status = slot ? QuerySubShader(slot, shader) : MC_S_OK;
    kinds = KindsOf(shader);
    return status;
}
