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

float AskLuminance(IShellShader& shader, TMCColorRGBA& scratch, bool& fullArea, ShadingIn& in)
{
    shader.ShadeColor(scratch, fullArea, in);
    return Luminance(scratch);
}

bool ReadNumber(const ConnectedShader& shader, uint32_t kinds, uint32_t colorKinds, float& number,
    TMCColorRGBA& scratch, bool& fullArea, ShadingIn& in)
{
    if (!shader)
        return false;
    if ((kinds & colorKinds) != 0)
        number = AskLuminance(*shader, scratch, fullArea, in);
    else if ((kinds & kOutputValue) != 0)
        shader->ShadeValue(number, fullArea, in);
    else
        return false;
    return true;
}
