#pragma once
#include "frame/IShellShader.h"
#include "host/library/Component.h"
#include "host/sources/Sources.h"
#include <cmath>

namespace fernwick {

/// What all sources share. They read `fUV` only; a coordinate that is no finite number counts as 0.
class SourceBase : public Component<IShellShader, IID_IShellShader> {
public:
    void GetShadingFlags(ShadingFlags& flags) final
    {
        flags.fNeeds |= kNeedsUV;
        flags.fDependencyBits = 0;
    }
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        result.fShadingNormal = in.fNormalLocal;
        result.fCoverage = kCovered;
        ShadeColor(result.fColor, result.fFullArea, in);
        return 1;
    }

protected:
    static constexpr float kCovered = 1.0f;

    static TVector2 CoordinatesOf(const ShadingIn& in)
    {
        const auto finite = [](float number) { return std::isfinite(number) ? number : 0.0f; };
        return {finite(in.fUV[0]), finite(in.fUV[1])};
    }
};

/// A source of colours.
class ColorSource : public SourceBase {
public:
    static constexpr int32_t kKinds = kOutputColor;

    virtual TMCColorRGBA ColorAt(const TVector2& uv) const = 0;

    uint32_t GetOutputKinds() override { return kKinds; }
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) final
    {
        fullArea = false;
        color = ColorAt(CoordinatesOf(in));
        return kCovered;
    }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) final
    {
        fullArea = false;
        value = Luminance(ColorAt(CoordinatesOf(in)));
        return kCovered;
    }
};

/// A source of numbers.
class ValueSource : public SourceBase {
public:
    static constexpr int32_t kKinds = kOutputValue;

    virtual float ValueAt(const TVector2& uv) const = 0;

    uint32_t GetOutputKinds() override { return kKinds; }
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) final
    {
        fullArea = false;
        const float value = ValueAt(CoordinatesOf(in));
        color = {value, value, value, 1};
        return kCovered;
    }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) final
    {
        fullArea = false;
        value = ValueAt(CoordinatesOf(in));
        return kCovered;
    }
};

} // namespace fernwick
