#pragma once
#include "frame/IShellShader.h"
#include "frame/MCCountedPtr.h"

/// What a parameter record holds for a plugged shader; null for an empty slot.
using SubShaderSlot = MCCountedPtr<IMCUnknown>;

/// The plugged shader as its wrapper interface.
using ConnectedShader = MCCountedPtr<IShellShader>;

/// Queries `slot` for `IShellShader` into `shader`. An emptied slot drops its shader.
/// @return the status of the query; 0 for an empty slot
MCErr QuerySubShader(const SubShaderSlot& slot, ConnectedShader& shader);

/// The output kinds that a parent caches; 0 for no shader.
inline uint32_t KindsOf(const ConnectedShader& shader) { return shader ? shader->GetOutputKinds() : 0; }

/// The common refresh of a sub-shader: queries `slot` for `IShellShader` into `shader` and stores its output
/// kinds. An emptied slot drops its shader: null, kinds 0.
/// @return the status of the query; 0 for an empty slot
MCErr ConnectSubShader(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds);

/// The refresh of the shaders that go on using a sub-shader after its slot was emptied.
MCErr ConnectSubShaderOrKeep(const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds);

/// Asks `shader` for its colour into `scratch` and returns that colour's luminance.
inline float AskLuminance(IShellShader& shader, TMCColorRGBA& scratch, bool& fullArea, ShadingIn& in)
{
    shader.ShadeColor(scratch, fullArea, in);
    return Luminance(scratch);
}

/// Reads a number from a plugged shader: the luminance of its colour when `kinds` has any bit of `colorKinds`,
/// else its value when `kinds` has `kOutputValue`.
/// @param number   receives the answer; a value shader is handed it as it stands
/// @param scratch  receives the colour, when a colour is asked for
/// @return false, with nothing touched, when there is no shader or it has neither
inline bool ReadNumber(const ConnectedShader& shader, uint32_t kinds, uint32_t colorKinds, float& number,
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

/// A number above 1 counts as invalid: the one before is repeated. Either way the result is the new `last`.
inline float RepeatLastAboveOne(float number, float& last)
{
    if (number > 1.0f)
        number = last;
    last = number;
    return number;
}
