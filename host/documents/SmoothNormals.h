#pragma once

struct aiMesh;

namespace fernwick {

/// Gives a mesh without normals smooth ones, as Assimp's step `aiProcess_GenSmoothNormals` does, to the bit, but in a
/// fraction of its time: the normals of triangles are summed at the vertices that lie closer together than a
/// ten-thousandth of the mesh's diagonal, but for those that are turned by more than `crease` degrees.
///
/// @param mesh  its indices are within its vertices; one without triangles, or with normals, stays as it is
void AddSmoothNormals(aiMesh& mesh, float crease);

} // namespace fernwick
