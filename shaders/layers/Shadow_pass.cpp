#include "shaders/layers/Shadow_pass.h"

bool Shadow_pass::SameParams(const Shadow_passParams& other) const
{
    return fParams.fSubShader == other.fSubShader && fParams.fSuppress == other.fSuppress;
}

MCErr Shadow_pass::ExtensionDataChanged() { return ConnectLayer(fParams.fSubShader, fShader, fShaderKinds); }

int32_t Shadow_pass::ShadeSurface(ShadingOut& result, ShadingIn& in)
{
    if (fParams.fSuppress) {
        result.fColor.fAlpha = 0;
        return 0;
    }
    bool fullArea = false;
    ShadeLayer(fShader, fShaderKinds, result, fLayerColor, fValue, fullArea, in);
    return 1;
}
