#include "host/documents/SmoothNormals.h"
#include <algorithm>
#include <array>
#include <assimp/SpatialSort.h>
#include <assimp/mesh.h>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <unordered_map>

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
    CloseVertices(const SortedVertices& sorted, const Bounds& bounds, float reach)
        : fEntries(sorted.Entries()), fLow(bounds.low), fReach(reach), fSquare(reach * reach)
    {
        std::vector<uint32_t> cells;
        cells.reserve(fEntries.size());
        fCells.reserve(fEntries.size());
        for (const auto& entry : fEntries) {
            const std::array<int64_t, 3> place = PlaceOf(entry.mPosition, 0);
            cells.push_back(fCells.emplace(KeyOf(place), static_cast<uint32_t>(fCells.size())).first->second);
        }
        fStarts.resize(fCells.size() + 1);
        for (const uint32_t cell : cells)
            ++fStarts[cell + 1];
        for (size_t i = 1; i < fStarts.size(); ++i)
            fStarts[i] += fStarts[i - 1];
        fMembers.resize(cells.size());
        std::vector<uint32_t> ends(fStarts.begin(), fStarts.end() - 1);
        for (uint32_t rank = 0; rank < cells.size(); ++rank)
            fMembers[ends[cells[rank]]++] = rank;
    }

    /// The ranks of all that are close to a position, ascending.
    void Find(uint32_t rank, std::vector<uint32_t>& found) const
    {
        found.clear();
        const auto& asked = fEntries[rank];
        const std::array<int64_t, 3> first = PlaceOf(asked.mPosition, -1);
        const std::array<int64_t, 3> last = PlaceOf(asked.mPosition, 1);
        std::array<int64_t, 3> place;
        for (place[0] = first[0]; place[0] <= last[0]; ++place[0])
            for (place[1] = first[1]; place[1] <= last[1]; ++place[1])
                for (place[2] = first[2]; place[2] <= last[2]; ++place[2])
                    FindIn(KeyOf(place), asked, found);
        if (first != last)
            std::sort(found.begin(), found.end());
    }

private:
    static constexpr int kReachesPerCell = 8;
    static constexpr int kBits = 20; // of a key for each axis, where it stays below 10000 / 8

    const std::vector<SortedVertices::Entry>& fEntries;
    aiVector3D fLow;
    float fReach;
    float fSquare;
    std::unordered_map<uint64_t, uint32_t> fCells; // numbers by key
    std::vector<uint32_t> fStarts;                 // by cell, of its members; one more for the end
    std::vector<uint32_t> fMembers;                // ranks, ascending in each cell

    /// The cell of a position, or of one that lies a little more than the reach away.
    std::array<int64_t, 3> PlaceOf(const aiVector3D& position, int side) const
    {
        constexpr double kALittleMore = 1.001;
        std::array<int64_t, 3> place;
        for (unsigned axis = 0; axis < 3; ++axis) {
            const double away
                = static_cast<double>(position[axis]) - fLow[axis] + side * kALittleMore * fReach;
            place[axis]
                = static_cast<int64_t>(std::floor(away / (kReachesPerCell * static_cast<double>(fReach))))
                + 1;
        }
        return place;
    }

    static uint64_t KeyOf(const std::array<int64_t, 3>& place)
    {
        return static_cast<uint64_t>(place[0]) << 2 * kBits | static_cast<uint64_t>(place[1]) << kBits
            | static_cast<uint64_t>(place[2]);
    }

    void FindIn(uint64_t key, const SortedVertices::Entry& asked, std::vector<uint32_t>& found) const
    {
        const auto cell = fCells.find(key);
        if (cell == fCells.end())
            return;
        for (uint32_t i = fStarts[cell->second]; i < fStarts[cell->second + 1]; ++i) {
            const auto& entry = fEntries[fMembers[i]];
            if (entry.mDistance < asked.mDistance + fReach && entry.mDistance >= asked.mDistance - fReach
                && (entry.mPosition - asked.mPosition).SquareLength() < fSquare)
                found.push_back(fMembers[i]);
        }
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
    std::optional<CloseVertices> close; // no cell would hold what damaged numbers span
    if (bounds.areNumbers && std::isnormal(reach))
        close.emplace(sorted, bounds, reach);
    mesh.mNormals = new aiVector3D[mesh.mNumVertices];
    std::vector<uint32_t> ranks;
    std::vector<unsigned> found;
    const aiVector3D* last = nullptr; // found around
    for (uint32_t rank = 0; rank < sorted.Entries().size(); ++rank) {
        const auto& entry = sorted.Entries()[rank];
        if (!close)
            sorted.FindPositions(entry.mPosition, reach, found);
        else if (last == nullptr || entry.mPosition != *last) {
            close->Find(rank, ranks);
            found.clear();
            for (const uint32_t one : ranks)
                found.push_back(sorted.Entries()[one].mIndex);
            last = &entry.mPosition;
        }
        mesh.mNormals[entry.mIndex] = SmoothNormal(entry.mIndex, found, faceNormals, leastCosine);
    }
}

} // namespace fernwick
