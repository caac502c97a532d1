#pragma once
#include "tests/support/ShaderTest.h"
#include "tests/support/Socket.h"

/// Something plugged that gives no `IShellShader`: the query fails with `Socket::kRefusal`.
inline void PlugNoShader(SubShaderSlot& slot) { slot = fernwick::MakeCounted<Socket>().Get(); }

/// A shader that answers each kind apart: 0.25 as colour, 0.5 as value, 0.75 as surface, all with alpha 0.5.
inline MCCountedPtr<FakeShader> FakeAll(uint32_t kinds = kOutputSurface | kOutputColor | kOutputValue)
{
    auto shader = FakeColor({0.25f, 0.25f, 0.25f, 0.5f}, kinds);
    shader->fValue = 0.5f;
    shader->fSurface.fColor = {0.75f, 0.75f, 0.75f, 0.5f};
    shader->fSurface.fThirdColor = TMCColorRGB::kWhite;
    return shader;
}

/// True when `result` is `base` but for its colour.
inline bool DiffersInColorAlone(const ShadingOut& result, ShadingOut base)
{
    base.fColor = result.fColor;
    return std::memcmp(&base, &result, sizeof result) == 0;
}
