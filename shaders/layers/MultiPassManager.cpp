#include "shaders/layers/MultiPassManager.h"
#include "shaders/layers/Layer.h"
#include "shaders/layers/LayerSlots.h"
#include "shaders/layers/PassLevel.h"
#include <algorithm>

namespace {

constexpr int32_t kLastPass = 10;

/// The levels 0.05, 0.15 ... 0.95 give 1 to 10, each from the middle of its tenth; below 0.04 it is 0.
int32_t PassOf(float level) { return CutToInt32((static_cast<double>(level) + 0.06) * 10.0); }

} // namespace

bool MultiPassManager::SameParams(const MultiPassManagerParams& other) const
{
    return std::ranges::equal(fParams.fSubShader, other.fSubShader);
}

MCErr MultiPassManager::ExtensionDataChanged()
{
    return ConnectLayers(fParams.fSubShader, fShader, fShaderKinds);
}

int32_t MultiPassManager::ShadeSurface(ShadingOut& result, ShadingIn& in)
{
    bool fullArea = false;
    fValue = 0;
    if (!ReadPassLevel(fShader[0], fShaderKinds[0], fValue, fLayerColor, fullArea, in))
        return 0;
    const int32_t pass = PassOf(fValue);
    if (pass < 0 || pass > kLastPass)
        return 0; // a level that belongs to no pass produces nothing

    // Pass 0 is the selector itself. A surface starts from what the caller has, anything else from the defaults.
    if ((fShaderKinds[pass] & kOutputSurface) == 0)
        result.SetDefaults();
    const Layer layer = {fShader[pass], fShaderKinds[pass], fLayerColor, fValue};
    layer.Shade(result, fullArea, in);
    return 1;
}
