#include "shaders/layers/MultiPassControl.h"
#include "shaders/layers/PassLevel.h"

namespace {

struct Level {
    int32_t fCode;
    float fValue;
};

/// Each in the middle of its tenth.
constexpr Level kLevels[] = {
    {Code("LONE"), 0.05f},
    {Code("LTWO"), 0.15f},
    {Code("LTHR"), 0.25f},
    {Code("LFOR"), 0.35f},
    {Code("LFIV"), 0.45f},
    {Code("LSIX"), 0.55f},
    {Code("LSVN"), 0.65f},
    {Code("LEGT"), 0.75f},
    {Code("LNIN"), 0.85f},
    {Code("LTEN"), 0.95f},
};

/// 0 for an unknown code.
float LevelOf(int32_t code)
{
    for (const Level& level : kLevels)
        if (level.fCode == code)
            return level.fValue;
    return 0.0f;
}

} // namespace

bool MultiPassControl::SameParams(const MultiPassControlParams& other) const
{
    return fParams.fLevel == other.fLevel && fParams.fSubShader == other.fSubShader;
}

MCErr MultiPassControl::ExtensionDataChanged()
{
    return ConnectSubShaderOrKeep(fParams.fSubShader, fShader, fShaderKinds);
}

float MultiPassControl::ShadeValue(float& value, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    if (fParams.fLevel != Code("LREF")) {
        value = LevelOf(fParams.fLevel);
        return kFullCoverage;
    }
    if (!fShader)
        return 0.0f;
    if (!ReadPassLevel(fShader, fShaderKinds, value, fLayerColor, fullArea, in))
        value = 0;
    return kFullCoverage;
}
