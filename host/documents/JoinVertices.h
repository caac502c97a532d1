#pragma once

struct aiMesh;

namespace fernwick {

/// Joins the vertices of a mesh that are at one place and alike in all else, and drops those of no face, as Assimp's
/// step `aiProcess_JoinIdenticalVertices` does, in a fraction of its time and memory. Colours don't part
/// vertices, all sets of UV do. Bones, animations and colours aren't kept up to date.
void JoinVertices(aiMesh& mesh);

} // namespace fernwick
