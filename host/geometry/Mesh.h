#pragma once
#include "host/geometry/Geometry.h"
#include <array>
#include <memory>
#include <vector>

namespace fernwick {

/// Triangles in the coordinates of their element. Normals and UV are by vertex and may be missing as a whole.
struct MeshDescription {
    std::vector<TVector3> fPoints;
    std::vector<TVector3>
        fNormals;               ///< to the outer side; without, triangles are flat, counter-clockwise outside
    std::vector<TVector2> fUVs; ///< without, U and V are the place in the bounding box along X and Y, 0 to 1
    std::vector<std::vector<TVector2>> fFurtherUVs
        = {}; ///< sets beside the first, for pictures laid out by them
    std::vector<std::array<unsigned, 3>> fTriangles;

    size_t UVSetCount() const { return 1 + fFurtherUVs.size(); }
    /// @param set  below `UVSetCount`
    const std::vector<TVector2>& UVSet(size_t set) const { return set == 0 ? fUVs : fFurtherUVs[set - 1]; }
};

/// Finds the derivatives of the position along U and V in a triangle: where it has no area in UV, two unit vectors
/// across each other.
/// @param uvs    one of the sets of the mesh
/// @param point  has its normal and gets the derivatives
void FindDerivatives(const MeshDescription& mesh, const std::vector<TVector2>& uvs,
    const std::array<unsigned, 3>& corners, SurfacePoint& point);

/// The UV and derivatives of a place are those of the first set, see `FindDerivatives`. The curvature comes from the
/// fitted principal curvatures of the vertices, found with the first question for it; a vertex with too few
/// neighbours on its side of the creases, that is where normals differ, counts as flat.
std::shared_ptr<const Geometry> MakeMesh(MeshDescription description);

/// A box around its element's origin. Its UV layout has three faces in each of two rows: +X, +Y, +Z at the
/// bottom, -X, -Y, -Z at the top.
std::shared_ptr<const Geometry> MakeBox(const TVector3& size);

} // namespace fernwick
