#pragma once
#include "host/geometry/Mesh.h"
#include <cstdint>
#include <span>

namespace fernwick {

/// The vertices of a mesh with those at one place and of one normal joined, and which of them share a triangle.
/// Vertices at one place whose normals differ stay apart: a crease parts the surface.
class JoinedVertices {
public:
    explicit JoinedVertices(const MeshDescription& mesh);

    size_t Count() const { return fFirsts.size(); }
    /// The joined vertex of one of the mesh's.
    uint32_t Joined(size_t vertex) const { return fJoined[vertex]; }
    /// The first of the mesh's vertices that are joined to it.
    uint32_t First(size_t joined) const { return fFirsts[joined]; }

    /// A vertex, and behind it ring by ring those around it, until there are `enough` or `mostRings` are walked.
    void FindAround(uint32_t joined, size_t enough, int mostRings, std::vector<uint32_t>& found) const;

private:
    std::vector<uint32_t> fJoined;     // by vertex
    std::vector<uint32_t> fFirsts;     // by joined vertex
    std::vector<size_t> fStarts;       // by joined vertex, of its neighbours; one more for the end
    std::vector<uint32_t> fNeighbours; // ascending for each, without itself

    void Join(const MeshDescription& mesh);
    void FindNeighbours(const MeshDescription& mesh);
    std::span<const uint32_t> NeighboursOf(uint32_t joined) const
    {
        return {&fNeighbours[fStarts[joined]], fStarts[joined + 1] - fStarts[joined]};
    }
};

} // namespace fernwick
