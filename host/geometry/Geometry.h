#pragma once
#include "frame/SceneRecords.h"
#include <functional>
#include <optional>

struct RTCSceneTy;

namespace fernwick {

struct MeshDescription;

/// A point of a surface, in the coordinates of its element.
struct SurfacePoint {
    TVector3 fPoint;
    TVector3 fNormal; ///< of length 1, to the outer side
    TVector2 fUV;
    TVector3 fDerivU; ///< derivatives of the position along U and V; never parallel but at poles
    TVector3 fDerivV;
};

/// The derivative of the normal at a point of a surface: it turns a step along the surface into the change of the
/// unit normal. Positive along the steps in which the outer side is bulged.
struct ShapeMatrix {
    float fRows[3][3] = {};
};

/// Where a ray meets a geometry: the distance in lengths of the ray's direction, and a place on the surface that
/// only the geometry can read.
struct SurfaceHit {
    double fDistance;
    unsigned fPrimitive;
    float fU;
    float fV;
};

/// A shape in the coordinates of its element, ready for rays. It never changes and any number of threads may ask
/// it.
class Geometry {
public:
    virtual ~Geometry();
    Geometry(const Geometry&) = delete;
    Geometry& operator=(const Geometry&) = delete;

    virtual SurfacePoint PointAt(const SurfaceHit& hit) const = 0;
    virtual ShapeMatrix ShapeAt(const SurfaceHit& hit) const = 0;
    virtual TBBox3D Bounds() const = 0;
    virtual const MeshDescription* Mesh() const { return nullptr; } ///< its triangles; null where it has none

    /// Lays the normals out over the UV square of `edge` by `edge` cells, each by its centre. Cells that the
    /// surface doesn't reach are left out; where its UV overlap, a later call counts.
    virtual void LayOutNormals(
        int edge, const std::function<void(int u, int v, const TVector3& normal)>& lay) const = 0;

    /// The nearest hit within the limits, both inclusive and counted in lengths of `direction`.
    std::optional<SurfaceHit> Cast(
        const TVector3& origin, const TVector3& direction, float nearLimit, float farLimit) const;

    RTCSceneTy* Rays() const { return fRays; } ///< as Embree knows the shape

protected:
    Geometry();

    RTCSceneTy* fRays; // to be filled and committed by the constructor of a shape
};

} // namespace fernwick
