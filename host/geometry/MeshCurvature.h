#pragma once
#include "host/geometry/Mesh.h"

namespace fernwick {

/// The derivative of the normal at each vertex, from a surface of second degree fitted to the vertices around it.
/// Vertices at one place with one normal are one; a crease parts the surface. Where there are too few neighbours
/// for a fit the matrix is zero.
std::vector<ShapeMatrix> FindVertexShapes(const MeshDescription& mesh);

} // namespace fernwick
