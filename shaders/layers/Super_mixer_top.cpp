#include "shaders/layers/Super_mixer_top.h"
#include "shaders/layers/Layer.h"

MCErr Super_mixer_top::ExtensionDataChanged()
{
    const MCErr status = RefreshMix();
    fAnyLayer = CountConnected(Layers()) > 0;
    return status;
}

int32_t Super_mixer_top::ShadeSurface(ShadingOut& result, ShadingIn& in)
{
    ShadingOut accum_shadingout;
    ShadingOut fetch;
    bool fullArea = false;
    fValue = 0;
    fShift = 0;
    if (fParams.fBypass) {
        if (!AskControlColor(fullArea, in))
            return 0; // as for an empty control of the mix
        result.fColor = fLayerColor;
        in.fChannelMask = 0;
        return 1;
    }
    // A control that is a surface alone is asked for its colour, never for its surface.
    if (!ReadControl(kOutputColor | kOutputSurface, fullArea, in))
        return 0;
    if (!fAnyLayer)
        return 0;

    accum_shadingout.Clear();
    for (int slot = kFirstLayerSlot; slot < kMixerSlotCount; ++slot)
        if (TakeLayer<HalfSineInDouble>(slot))
            AddLayer(slot, accum_shadingout, fetch, fullArea, in);
    if (fActiveCount >= 2 && !fParams.fSmooth)
        accum_shadingout *= static_cast<float>(1.0 / fActiveCount); // the alpha too
    result = accum_shadingout;
    return 1;
}

void Super_mixer_top::AddLayer(
    int slot, ShadingOut& accum_shadingout, ShadingOut& fetch, bool& fullArea, ShadingIn& in)
{
    const Layer layer = {fShader[slot], fShaderKinds[slot], fLayerColor, fValue};
    if ((layer.fShaderKinds & kOutputSurface) != 0) {
        fetch.SetDefaults(); // of the channels that the layer leaves alone
        layer.fShader->ShadeSurface(fetch, in);
        fetch *= fWeight;
        fetch.fThirdColor *= fWeight; // kept: this one channel carries the square of the weight
        accum_shadingout += fetch;
        in.fChannelMask = kAllChannels;
    } else if (layer.AskColor(fullArea, in)) {
        // A value has overwritten `fValue`; kept: the ranges of all later layers are held against it.
        fLayerColor *= fWeight;
        accum_shadingout.fColor += fLayerColor;
    }
}
