#include "host/scene/Light.h"
#include "frame/Numbers.h"
#include "host/scene/Placement.h"
#include "host/scene/Scene.h"
#include <limits>

namespace fernwick {

MCErr Light::QueryInterface(const GUID& id, void** out) { return fElement.QueryInterface(id, out); }

uint32_t Light::AddRef() { return fElement.AddRef(); }

uint32_t Light::Release() { return fElement.Release(); }

void Light::GetLightTransform(TTransform3D& transform) { transform = fElement.Transform(); }

void Light::GetLightParameter(int32_t parameter, float& value)
{
    value = parameter == Code("brit") ? fLight.fBrightness : 0;
}

void Light::GetDirection(const TVector3& point, TVector3& direction, float& distance)
{
    if (fLight.fKind == LightKind::kDistant) {
        direction = Turned(fElement.Transform(), {0, 0, 1});
        distance = std::numeric_limits<float>::infinity();
        return;
    }
    direction = fElement.Transform().fTranslation - point;
    distance = static_cast<float>(Length(direction));
    Normalize(direction);
}

void Light::GetLightState(LightState& state)
{
    constexpr int32_t kNoRange = 1;
    constexpr int32_t kRange = 2;
    constexpr int32_t kRangeAndCone = 3;
    state = {};
    state.fKind = fLight.fKind == LightKind::kDistant ? kNoRange
        : fLight.fKind == LightKind::kSpot            ? kRangeAndCone
                                                      : kRange;
    state.fLightColor = fLight.fColor;
    state.fLightColor *= fLight.fBrightness;
    state.fOuterAngle = fLight.fOuterAngle;
    state.fInnerAngle = fLight.fInnerAngle;
    state.fNearRange = fLight.fNearRange;
    state.fFarRange = fLight.fFarRange;
}

} // namespace fernwick
