#pragma once
#include "host/sources/SourceBase.h"

namespace fernwick {

struct SurfaceSettings {
    TMCColorRGBA fColor = {1, 1, 1, 1};
    TMCColorRGB fSecondColor = TMCColorRGB::kBlack;
    TMCColorRGB fThirdColor = TMCColorRGB::kBlack;
    TMCColorRGB fFourthColor = TMCColorRGB::kBlack;
};

/// The same surface everywhere. It names no kind but the surface, so that shaders ask for all of it.
class SurfaceSource final : public ColorSource {
public:
    using Settings = SurfaceSettings;
    static constexpr int32_t kKinds = kOutputSurface;

    explicit SurfaceSource(const Settings& settings) : fSettings(settings) { }
    uint32_t GetOutputKinds() override { return kKinds; }
    TMCColorRGBA ColorAt(const TVector2&) const override { return fSettings.fColor; }
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        result.fSecondColor = fSettings.fSecondColor;
        result.fThirdColor = fSettings.fThirdColor;
        result.fFourthColor = fSettings.fFourthColor;
        return SourceBase::ShadeSurface(result, in);
    }

private:
    Settings fSettings;
};

} // namespace fernwick
