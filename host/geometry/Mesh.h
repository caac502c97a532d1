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
    std::vector<std::array<unsigned, 3>> fTriangles;
};

/// Where a triangle has no area in UV, its derivatives are two unit vectors across each other. The curvature comes
/// from the fitted principal curvatures of the vertices, found with the first question for it; a vertex with too
/// few neighbours on its side of the creases, that is where normals differ, counts as flat.
std::shared_ptr<const Geometry> MakeMesh(MeshDescription description);

/// A box around its element's origin. Its UV layout has three faces in each of two rows: +X, +Y, +Z at the
/// bottom, -X, -Y, -Z at the top.
std::shared_ptr<const Geometry> MakeBox(const TVector3& size);

} // namespace fernwick
