#include "host/scene/World.h"
#include "host/geometry/EmbreeDevice.h"
#include <limits>

namespace fernwick {

World::World(const Scene& scene) : fRays(rtcNewScene(EmbreeDevice()))
{
    rtcSetSceneFlags(fRays, RTC_SCENE_FLAG_ROBUST);
    unsigned index = 0;
    for (const SceneElement* const element : scene.Shapes()) {
        const RTCGeometry instance = rtcNewGeometry(EmbreeDevice(), RTC_GEOMETRY_TYPE_INSTANCE);
        rtcSetGeometryInstancedScene(instance, element->Shape()->Shape().Rays());
        const TTransform3D& place = element->Transform();
        float rows[12];
        for (unsigned row = 0; row < 3; ++row) {
            for (unsigned column = 0; column < 3; ++column)
                rows[4 * row + column] = place.fMatrix[row][column];
            rows[4 * row + 3] = place.fTranslation[row];
        }
        rtcSetGeometryTransform(instance, 0, RTC_FORMAT_FLOAT3X4_ROW_MAJOR, rows);
        rtcCommitGeometry(instance);
        rtcAttachGeometryByID(fRays, instance, index++);
        rtcReleaseGeometry(instance);
    }
    rtcCommitScene(fRays);
}

World::~World() { rtcReleaseScene(fRays); }

std::optional<World::Hit> World::Cast(
    const TVector3& origin, const TVector3& direction, float nearLimit) const
{
    RTCRayHit query = EmbreeRay(origin, direction, nearLimit, std::numeric_limits<float>::infinity());
    const std::optional<SurfaceHit> hit = CastEmbreeRay(fRays, query);
    if (!hit)
        return std::nullopt;
    return Hit{query.hit.instID[0], *hit};
}

} // namespace fernwick
