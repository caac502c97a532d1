#pragma once
#include "frame/IShellShader.h"
#include "host/library/Component.h"
#include "host/sources/Sources.h"
#include <cmath>

namespace fernwick {

/// What all sources share. They read `fUV` only; a coordinate that is no finite number counts as 0.
class SourceBase : public Component<IShellShader, IID_IShellShader> {
public:
    virtual TMCColorRGBA ColorAt(const TVector2& uv) const = 0;
    virtual float ValueAt(const TVector2& uv) const = 0;

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
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) final
    {
        fullArea = false;
        color = ColorAt(CoordinatesOf(in));
        return kCovered;
    }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) final
    {
        fullArea = false;
        value = ValueAt(CoordinatesOf(in));
        return kCovered;
    }

private:
    static constexpr float kCovered = 1.0f;

    static TVector2 CoordinatesOf(const ShadingIn& in)
    {
        const auto finite = [](float number) { return std::isfinite(number) ? number : 0.0f; };
        return {finite(in.fUV[0]), finite(in.fUV[1])};
    }
};

/// A source of colours. Its value is the luminance.
class ColorSource : public SourceBase {
public:
    static constexpr int32_t kKinds = kOutputColor;

    uint32_t GetOutputKinds() override { return kKinds; }
    float ValueAt(const TVector2& uv) const final { return Luminance(ColorAt(uv)); }
};

/// A source of numbers. Its colour is an opaque grey.
class ValueSource : public SourceBase {
public:
    static constexpr int32_t kKinds = kOutputValue;

    uint32_t GetOutputKinds() override { return kKinds; }
    TMCColorRGBA ColorAt(const TVector2& uv) const final
    {
        const float value = ValueAt(uv);
        return {value, value, value, 1};
    }
};

} // namespace fernwick
