#include "host/documents/SmoothNormals.h"
#include <algorithm>
#include <array>
#include <assimp/SpatialSort.h>
#include <assimp/mesh.h>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace fernwick {

namespace {

/// The vertices in the order in which Assimp sums them up.
class SortedVertices : public Assimp::SpatialSort {
public:
    using Entry = SpatialSort::Entry;

    explicit SortedVertices(const aiMesh& mesh)
        : SpatialSort(mesh.mVertices, mesh.mNumVertices, sizeof(aiVector3D))
    { }

    const std::vector<Entry>& Entries() const { return mPositions; }
};

struct Bounds {
    aiVector3D low;
    aiVector3D high;
    bool areNumbers = true; ///< whether no vertex is at a place that is none

    explicit Bounds(const aiMesh& mesh) : low(mesh.mVertices[0]), high(mesh.mVertices[0])
    {
        for (unsigned i = 0; i < mesh.mNumVertices; ++i)
            for (unsigned axis = 0; axis < 3; ++axis) {
                low[axis] = std::min(mesh.mVertices[i][axis], low[axis]);
                high[axis] = std::max(mesh.mVertices[i][axis], high[axis]);
                areNumbers = areNumbers && std::isfinite(mesh.mVertices[i][axis]);
            }
    }
};

/// Finds what lies close to a vertex by a grid of cells a few times as wide. Assimp walks all that lies as far from a
/// plane, which takes a time that grows with the square of the vertices.
class CloseVertices {
public:
    /// @param reach  how close others must be, above 0 and a ten-thousandth of the diagonal of the bounds
    CloseVertices(const aiMesh& mesh, const SortedVertices& sorted, const Bounds& bounds, float reach)
        : fPositions(mesh.mVertices), fLow(bounds.low), fReach(reach), fSquare(reach * reach),
          fSlots(std::bit_ceil(2 * sorted.Entries().size()), kNone)
    {
        // Cells get their numbers in the order of the file, where neighbours in space are mostly neighbours too.
        std::vector<uint32_t> cells(mesh.mNumVertices);
        for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
            const uint64_t key = KeyOf(PlaceOf(mesh.mVertices[i], 0));
            uint32_t& cell = fSlots[FindSlot(key)];
            if (cell == kNone) {
                cell = static_cast<uint32_t>(fKeys.size());
                fKeys.push_back(key);
            }
            cells[i] = cell;
        }
        fStarts.resize(fKeys.size() + 1);
        for (const uint32_t cell : cells)
            ++fStarts[cell + 1];
        for (size_t i = 1; i < fStarts.size(); ++i)
            fStarts[i] += fStarts[i - 1];
        fMembers.resize(cells.size());
        std::vector<uint32_t> ends(fStarts.begin(), fStarts.end() - 1);
        for (uint32_t rank = 0; rank < cells.size(); ++rank) {
            const SortedVertices::Entry& entry = sorted.Entries()[rank];
            fMembers[ends[cells[entry.mIndex]]++] = {rank, entry.mIndex, entry.mDistance};
        }
    }

    /// Calls `visit` with each vertex and all that are close to it, itself among them, in the order of their ranks.
    template <class Visit> void ForEach(const Visit& visit) const
    {
        std::vector<Member> found;
        std::vector<unsigned> close;
        const aiVector3D* last = nullptr; // found around
        for (const Member& member : fMembers) {
            const aiVector3D& position = fPositions[member.vertex];
            if (last == nullptr || position != *last) {
                Find(member, found);
                close.clear();
                for (const Member& one : found)
                    close.push_back(one.vertex);
                last = &position;
            }
            visit(member.vertex, close);
        }
    }

private:
    static constexpr uint32_t kNone = ~0u;
    static constexpr int kReachesPerCell = 8;
    static constexpr int kBits = 20; // of a key for each axis, where it stays below 10000 / 8

    struct Member {
        uint32_t rank;
        unsigned vertex;
        float distance; // from a plane, as Assimp rounds it
    };

    const aiVector3D* fPositions;
    aiVector3D fLow;
    float fReach;
    float fSquare;
    std::vector<uint32_t> fSlots;  // numbers of cells by the hashes of their keys, at most half of them taken
    std::vector<uint64_t> fKeys;   // by cell
    std::vector<uint32_t> fStarts; // by cell, of its members; one more for the end
    std::vector<Member> fMembers;  // by cell, and by rank in each

    /// The cell of a position, or of one that lies a little more than the reach away.
    std::array<int64_t, 3> PlaceOf(const aiVector3D& position, int side) const
    {
        constexpr double kALittleMore = 1.001;
        const double perCell = 1 / (kReachesPerCell * static_cast<double>(fReach));
        std::array<int64_t, 3> place;
        for (unsigned axis = 0; axis < 3; ++axis) {
            const double away
                = static_cast<double>(position[axis]) - fLow[axis] + side * kALittleMore * fReach;
            place[axis] = static_cast<int64_t>(away * perCell + 1); // above 0: no reach is as wide as a cell
        }
        return place;
    }

    static uint64_t KeyOf(const std::array<int64_t, 3>& place)
    {
        return static_cast<uint64_t>(place[0]) << 2 * kBits | static_cast<uint64_t>(place[1]) << kBits
            | static_cast<uint64_t>(place[2]);
    }

    size_t FindSlot(uint64_t key) const
    {
        const uint64_t hash = key * 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
        size_t slot = (hash ^ hash >> 32) & (fSlots.size() - 1);
        while (fSlots[slot] != kNone && fKeys[fSlots[slot]] != key)
            slot = (slot + 1) & (fSlots.size() - 1);
        return slot;
    }

    void Find(const Member& asked, std::vector<Member>& found) const
    {
        found.clear();
        const std::array<int64_t, 3> first = PlaceOf(fPositions[asked.vertex], -1);
        const std::array<int64_t, 3> last = PlaceOf(fPositions[asked.vertex], 1);
        std::array<int64_t, 3> place;
        for (place[0] = first[0]; place[0] <= last[0]; ++place[0])
            for (place[1] = first[1]; place[1] <= last[1]; ++place[1])
                for (place[2] = first[2]; place[2] <= last[2]; ++place[2])
                    FindIn(fSlots[FindSlot(KeyOf(place))], asked, found);
        if (first != last)
            std::sort(found.begin(), found.end(),
                [](const Member& left, const Member& right) { return left.rank < right.rank; });
    }

    void FindIn(uint32_t cell, const Member& asked, std::vector<Member>& found) const
    {
        if (cell == kNone)
            return;
        for (uint32_t i = fStarts[cell]; i < fStarts[cell + 1]; ++i)
            if ((fPositions[fMembers[i].vertex] - fPositions[asked.vertex]).SquareLength() < fSquare
                && IsAsFar(fMembers[i], asked))
                found.push_back(fMembers[i]);
    }

    /// Whether Assimp, which looks only there, would find it.
    bool IsAsFar(const Member& member, const Member& asked) const
    {
        return member.distance < asked.distance + fReach && member.distance >= asked.distance - fReach;
    }
};

bool HasArea(const aiMesh& mesh)
{
    return (mesh.mPrimitiveTypes & (aiPrimitiveType_TRIANGLE | aiPrimitiveType_POLYGON)) != 0;
}

/// The normal of its face at each vertex; that of the last one where several share it.
std::vector<aiVector3D> FaceNormals(const aiMesh& mesh)
{
    std::vector<aiVector3D> normals(mesh.mNumVertices);
    for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
        const aiFace& face = mesh.mFaces[i];
        aiVector3D normal(std::numeric_limits<float>::quiet_NaN()); // of a line or point: it has none
        if (face.mNumIndices > 2) {
            const aiVector3D& first = mesh.mVertices[face.mIndices[0]];
            const aiVector3D& second = mesh.mVertices[face.mIndices[1]];
            const aiVector3D& last = mesh.mVertices[face.mIndices[face.mNumIndices - 1]];
            normal = ((second - first) ^ (last - first)).NormalizeSafe();
        }
        for (unsigned corner = 0; corner < face.mNumIndices; ++corner)
            normals[face.mIndices[corner]] = normal;
    }
    return normals;
}

/// @param own    a vertex
/// @param close  those around it, itself among them
aiVector3D SmoothNormal(unsigned own, const std::vector<unsigned>& close,
    const std::vector<aiVector3D>& normals, float leastCosine)
{
    aiVector3D sum;
    for (const unsigned other : close)
        if (!std::isnan(normals[other].x) && (other == own || normals[other] * normals[own] >= leastCosine))
            sum += normals[other];
    return sum.NormalizeSafe();
}

} // namespace

void AddSmoothNormals(aiMesh& mesh, float crease)
{
    constexpr float kReach = 1e-4f; // of the diagonal
    constexpr float kRadiansPerDegree = 0.0174532925f;
    if (mesh.mNormals != nullptr || mesh.mVertices == nullptr || mesh.mNumVertices == 0 || !HasArea(mesh))
        return;
    const std::vector<aiVector3D> faceNormals = FaceNormals(mesh);
    const float leastCosine = std::cos(crease * kRadiansPerDegree);
    const SortedVertices sorted(mesh);
    const Bounds bounds(mesh);
    const float reach = (bounds.high - bounds.low).Length() * kReach;
    mesh.mNormals = new aiVector3D[mesh.mNumVertices];
    const auto smooth = [&](unsigned vertex, const std::vector<unsigned>& close) {
        mesh.mNormals[vertex] = SmoothNormal(vertex, close, faceNormals, leastCosine);
    };
    if (bounds.areNumbers && std::isnormal(reach))
        return CloseVertices(mesh, sorted, bounds, reach).ForEach(smooth);
    std::vector<unsigned> close; // by Assimp: no cell would hold what damaged numbers span
    for (const SortedVertices::Entry& entry : sorted.Entries()) {
        sorted.FindPositions(entry.mPosition, reach, close);
        smooth(entry.mIndex, close);
    }
}

} // namespace fernwick
