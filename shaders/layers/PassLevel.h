#pragma once
#include "frame/ShadingOut.h"
#include "frame/SubShader.h"

/// Reads the level of a pass: as `ReadNumber` does from a colour or a value, else the luminance of a surface's
/// colour. No channel of that surface is passed on, so the channel mask of `in` stays as it is.
/// @return false, with nothing touched, when there is no shader or it has none of the three
inline bool ReadPassLevel(const ConnectedShader& shader, uint32_t kinds, float& level,
    TMCColorRGBA& layerColor, bool& fullArea, ShadingIn& in)
{
    if (ReadNumber(shader, kinds, kOutputColor, level, layerColor, fullArea, in))
        return true;
    if (!shader || (kinds & kOutputSurface) == 0)
        return false;
    ShadingOut fetch;
    shader->ShadeSurface(fetch, in);
    level = Luminance(fetch.fColor);
    return true;
}
