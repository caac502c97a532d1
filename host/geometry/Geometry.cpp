#include "host/geometry/Geometry.h"
#include "host/geometry/EmbreeDevice.h"
#include "host/threads/Parallel.h"
#include <algorithm>
#include <cmath>

namespace fernwick {

RTCDevice EmbreeDevice()
{
    static const RTCDevice device = rtcNewDevice(EmbreeSettings());
    return device;
}

RTCRayHit EmbreeRay(const TVector3& origin, const TVector3& direction, float nearLimit, float farLimit)
{
    RTCRayHit query{};
    query.ray = {origin[0], origin[1], origin[2], nearLimit, direction[0], direction[1], direction[2], 0,
        farLimit, 0xFFFFFFFF, 0, 0};
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    query.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    return query;
}

std::optional<SurfaceHit> CastEmbreeRay(RTCScene scene, RTCRayHit& query)
{
    RTCRay& ray = query.ray;
    constexpr float kLargest = 1e18f; // that Embree calculates with; it stops the program for NaN
    for (const float number : {ray.org_x, ray.org_y, ray.org_z, ray.dir_x, ray.dir_y, ray.dir_z})
        if (!(std::fabs(number) < kLargest))
            return std::nullopt;
    if (!(ray.tnear <= ray.tfar))
        return std::nullopt;
    ray.tnear = std::max(ray.tnear, 0.0f);
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    rtcIntersect1(scene, &context, &query);
    if (query.hit.geomID == RTC_INVALID_GEOMETRY_ID)
        return std::nullopt;
    return SurfaceHit{query.ray.tfar, query.hit.primID, query.hit.u, query.hit.v};
}

Geometry::Geometry() : fRays(rtcNewScene(EmbreeDevice())) { rtcSetSceneFlags(fRays, RTC_SCENE_FLAG_ROBUST); }

Geometry::~Geometry() { rtcReleaseScene(fRays); }

std::optional<SurfaceHit> Geometry::Cast(
    const TVector3& origin, const TVector3& direction, float nearLimit, float farLimit) const
{
    RTCRayHit query = EmbreeRay(origin, direction, nearLimit, farLimit);
    return CastEmbreeRay(fRays, query);
}

} // namespace fernwick
