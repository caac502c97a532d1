#pragma once
#include "frame/SceneServices.h"

namespace fernwick {

class SceneElement;

enum class LightKind {
    kPoint,   ///< has a range
    kSpot,    ///< has a range and a cone
    kDistant, ///< shines everywhere along its axis
};

struct LightDescription {
    static constexpr float kEverywhere = 1e30f;

    LightKind fKind = LightKind::kPoint;
    TMCColorRGB fColor = TMCColorRGB::kWhite; ///< without the brightness
    float fBrightness = 1;
    float fNearRange = kEverywhere; ///< full strength up to this distance, scene units
    float fFarRange = kEverywhere;  ///< no effect beyond this distance
    float fInnerAngle = 30;         ///< degrees from the axis, full strength inside
    float fOuterAngle = 45;         ///< degrees from the axis, no effect outside
};

/// The light of an element. It shines along the element's -Z axis; the element counts for it.
class Light final : public ILight {
public:
    Light(SceneElement& element, const LightDescription& light) : fElement(element), fLight(light) { }
    virtual ~Light() = default;

    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override;
    uint32_t Release() override;

    void GetLightTransform(TTransform3D& transform) override;
    /// "brit" gives the brightness, any other code 0.
    void GetLightParameter(int32_t parameter, float& value) override;
    /// The direction has length 1; at the light itself it is zero. A distant light is infinitely far.
    void GetDirection(const TVector3& point, TVector3& direction, float& distance) override;
    void GetLightState(LightState& state) override;

private:
    SceneElement& fElement;
    LightDescription fLight;
};

} // namespace fernwick
