#pragma once
#include "host/geometry/Mesh.h"
#include <memory>
#include <mutex>

namespace fernwick {

class VertexFits;

/// The derivative of the normal at each vertex of a mesh, from a surface of second degree fitted to the vertices
/// around it. Vertices at one place with one normal are one; a crease parts the surface. Where there are too few
/// neighbours for a fit the matrix is zero.
///
/// All is found with the first question, by all threads that are free or ask meanwhile.
class MeshCurvature {
public:
    /// @param mesh  is asked for as long as this is
    explicit MeshCurvature(const MeshDescription& mesh);
    ~MeshCurvature();

    /// @param vertex  a number among the mesh's points
    const ShapeMatrix& At(size_t vertex) const;

private:
    const MeshDescription& fMesh;
    mutable std::once_flag fBegun;
    mutable std::unique_ptr<VertexFits> fFits;
};

} // namespace fernwick
