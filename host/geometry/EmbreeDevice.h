#pragma once
#include "host/geometry/Geometry.h"
#include <embree3/rtcore.h>

namespace fernwick {

/// The device that all shapes and scenes of the program share.
RTCDevice EmbreeDevice();

RTCRayHit EmbreeRay(const TVector3& origin, const TVector3& direction, float nearLimit, float farLimit);

/// Runs a query; nothing for a miss, and for a ray that isn't of finite numbers.
std::optional<SurfaceHit> CastEmbreeRay(RTCScene scene, RTCRayHit& query);

} // namespace fernwick
