#pragma once
#include "frame/IShellShader.h"
#include "host/library/Component.h"
#include <functional>
#include <vector>

/// A plugged shader whose answers a test sets and whose calls it can look at.
class FakeShader final : public fernwick::Component<IShellShader, IID_IShellShader> {
public:
    explicit FakeShader(uint32_t kinds = kOutputColor) : fKinds(kinds) { }

    uint32_t fKinds;
    TMCColorRGBA fColor = {0, 0, 0, 1};
    float fValue = 0;
    ShadingOut fSurface;
    bool fFullArea = true; ///< what each call leaves in the caller's flag
    bool fSilent = false;  ///< leaves the value or the colour as it is handed it
    std::function<void(ShadingIn&)>
        fOn; ///< runs first in each shading call, for answers that follow the sample

    int fColorCalls = 0;
    int fValueCalls = 0;
    int fSurfaceCalls = 0;
    const bool* fLastFullArea = nullptr; ///< where the last call's flag lay
    bool fHandedFullArea = true;         ///< what that flag was
    ShadingIn fLastIn;                   ///< the sample as the last call saw it

    int Calls() const { return fColorCalls + fValueCalls + fSurfaceCalls; }

    void GetShadingFlags(ShadingFlags&) override { }
    uint32_t GetOutputKinds() override { return fKinds; }
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        ++fSurfaceCalls;
        Note(in);
        result = fSurface;
        return 1;
    }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        ++fValueCalls;
        Note(in);
        Answer(fullArea);
        if (!fSilent)
            value = fValue;
        return kFullCoverage;
    }
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        ++fColorCalls;
        Note(in);
        Answer(fullArea);
        if (!fSilent)
            color = fColor;
        return kFullCoverage;
    }

private:
    static constexpr float kFullCoverage = 1;

    void Note(ShadingIn& in)
    {
        fLastIn = in;
        if (fOn)
            fOn(in);
    }
    void Answer(bool& fullArea)
    {
        fLastFullArea = &fullArea;
        fHandedFullArea = fullArea;
        fullArea = fFullArea;
    }
};

/// A shader that answers `color` when asked for its colour.
inline MCCountedPtr<FakeShader> FakeColor(TMCColorRGBA color, uint32_t kinds = kOutputColor)
{
    auto shader = fernwick::MakeCounted<FakeShader>(kinds);
    shader->fColor = color;
    return shader;
}

/// A shader that answers `value` when asked for its value.
inline MCCountedPtr<FakeShader> FakeValue(float value, uint32_t kinds = kOutputValue)
{
    auto shader = fernwick::MakeCounted<FakeShader>(kinds);
    shader->fValue = value;
    return shader;
}
