#pragma once
#include "frame/SceneServices.h"
#include "host/geometry/Geometry.h"
#include <memory>

namespace fernwick {

class SceneElement;

/// Fills the sample at a point of a surface.
/// @param place  of the element in world space
void FillSample(const SurfacePoint& point, const TTransform3D& place, ShadingIn& in);

/// The shape of an element as rays meet it; the element counts for it.
class Instance final : public IInstance {
public:
    Instance(SceneElement& element, std::shared_ptr<const Geometry> geometry)
        : fElement(element), fGeometry(std::move(geometry))
    { }
    virtual ~Instance() = default;

    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override;
    uint32_t Release() override;

    /// Casts the ray, which is in world space, at this shape alone. On a hit the record holds the distance, the
    /// point, the sample but for `fInstance`, which stays the caller's, and the shape matrix, all in world space;
    /// nothing is left to finish. On a miss it stays as it is.
    bool CastRay(RayHitParams& params) override;

    const Geometry& Shape() const { return *fGeometry; }

private:
    SceneElement& fElement;
    std::shared_ptr<const Geometry> fGeometry;
};

} // namespace fernwick
