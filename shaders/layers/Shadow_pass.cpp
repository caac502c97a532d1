#include "shaders/layers/Shadow_pass.h"
#include "shaders/layers/Layer.h"
#include "shaders/layers/LayerSlots.h"

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
    const Layer layer = {fShader, fShaderKinds, fLayerColor, fValue};
    layer.Shade(result, fullArea, in);
    return 1;
}
