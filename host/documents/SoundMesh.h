#pragma once
#include "host/geometry/Mesh.h"
#include <span>
#include <string>

namespace fernwick {

/// Gathers the mesh of one element from numbers that a file may hold damaged. What no ray can meet is left out, what
/// else is damaged is mended, and both are told of.
///
/// A vertex whose point has a NaN, an infinity or a coordinate beyond 1e18 in either direction, whose square a float
/// couldn't hold, is left out with its triangles. A normal that isn't finite becomes 0, for which that of the
/// triangle stands in, and so does a coordinate of UV that isn't. Triangles without an area are kept.
class SoundMesh {
public:
    /// @param uvSets  how many UVs each vertex brings
    explicit SoundMesh(size_t uvSets) { fMesh.fFurtherUVs.resize(uvSets > 0 ? uvSets - 1 : 0); }

    /// Makes room for what will be added.
    void Reserve(size_t vertices, size_t triangles);
    /// @param uvs  one of each set
    void AddVertex(const TVector3& point, const TVector3& normal, std::span<const TVector2> uvs);
    /// @param corners  by the number of vertices added before each
    void AddTriangle(const std::array<size_t, 3>& corners);

    /// Whether no triangle is left.
    bool IsEmpty() const { return fMesh.fTriangles.empty(); }
    MeshDescription Take() { return std::move(fMesh); }

    /// What is damaged, each such as `3 of 24 triangles have no area, and no ray meets them`.
    std::vector<std::string> Damages() const;

private:
    static constexpr unsigned kLeftOut = ~0u;

    MeshDescription fMesh;
    std::vector<unsigned> fPlaces; // by vertex added, among those of the mesh or kLeftOut
    size_t fTriangles = 0;         // added
    size_t fVerticesLeftOut = 0;
    size_t fTrianglesLeftOut = 0;
    size_t fFlatTriangles = 0;
    size_t fMendedVertices = 0;

    bool HasArea(const std::array<unsigned, 3>& triangle) const;
};

} // namespace fernwick
