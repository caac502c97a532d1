#pragma once
#include "host/scene/Scene.h"

namespace fernwick {

/// All shapes of a scene at their places, for rays in world space. The scene outlives it and doesn't move.
class World {
public:
    struct Hit {
        size_t fIndex; ///< of the element among the scene's `Shapes`
        SurfaceHit fSurface;
    };

    explicit World(const Scene& scene);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    /// The nearest hit beyond `nearLimit`, in lengths of `direction`. For any thread.
    std::optional<Hit> Cast(const TVector3& origin, const TVector3& direction, float nearLimit) const;

private:
    RTCSceneTy* fRays;
};

} // namespace fernwick
