#include "host/documents/JoinVertices.h"
#include <assimp/mesh.h>
#include <bit>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace fernwick {

namespace {

constexpr uint32_t kNone = ~0u;

bool AreAlike(const aiVector3D& left, const aiVector3D& right)
{
    constexpr float kSquare = 1e-5f * 1e-5f;
    return !((left - right).SquareLength() > kSquare); // a NaN is like anything
}

/// The arrays of a mesh that have a member for each vertex.
struct VertexArrays {
    std::vector<aiVector3D*>
        vectors; // those that are there, but the positions and colours, which nothing reads

    explicit VertexArrays(const aiMesh& mesh)
    {
        for (aiVector3D* const array : {mesh.mNormals, mesh.mTangents, mesh.mBitangents})
            if (array != nullptr)
                vectors.push_back(array);
        for (aiVector3D* const array : mesh.mTextureCoords)
            if (array != nullptr)
                vectors.push_back(array);
    }

    bool AreAlike(uint32_t left, uint32_t right) const
    {
        for (const aiVector3D* const array : vectors)
            if (!fernwick::AreAlike(array[left], array[right]))
                return false;
        return true;
    }

    void Move(uint32_t from, uint32_t to) const
    {
        for (aiVector3D* const array : vectors)
            array[to] = array[from];
    }
};

/// Vertices by their places.
class PlaceTable {
public:
    PlaceTable(const aiVector3D* places, size_t count)
        : fPlaces(places), fSlots(std::bit_ceil(2 * count), kNone)
    { }

    /// The last vertex before another that is at its place and `isLike` it; where there is none, the other itself,
    /// which is kept.
    template <class IsLike> uint32_t Find(uint32_t vertex, const IsLike& isLike)
    {
        uint32_t found = vertex;
        size_t slot = HashOf(fPlaces[vertex]) & (fSlots.size() - 1);
        for (; fSlots[slot] != kNone; slot = (slot + 1) & (fSlots.size() - 1))
            if (fPlaces[fSlots[slot]] == fPlaces[vertex] && isLike(fSlots[slot]))
                found = fSlots[slot];
        if (found == vertex)
            fSlots[slot] = vertex;
        return found;
    }

private:
    const aiVector3D* fPlaces;
    std::vector<uint32_t> fSlots;

    static size_t HashOf(const aiVector3D& place)
    {
        uint64_t hash = 0;
        for (const float number : {place.x, place.y, place.z})
            hash = (std::rotl(hash, 5) ^ std::bit_cast<uint32_t>(number + 0.0f)) // -0 as 0
                * 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
        return static_cast<size_t>(hash ^ hash >> 32);
    }
};

std::vector<bool> UsedVertices(const aiMesh& mesh)
{
    std::vector<bool> used(mesh.mNumVertices);
    for (unsigned i = 0; i < mesh.mNumFaces; ++i)
        for (unsigned corner = 0; corner < mesh.mFaces[i].mNumIndices; ++corner)
            if (mesh.mFaces[i].mIndices[corner] < mesh.mNumVertices)
                used[mesh.mFaces[i].mIndices[corner]] = true;
    return used;
}

} // namespace

void JoinVertices(aiMesh& mesh)
{
    if (mesh.mVertices == nullptr || mesh.mNumVertices == 0)
        return;
    const VertexArrays arrays(mesh);
    const std::vector<bool> used = UsedVertices(mesh);
    std::vector<uint32_t> joined(mesh.mNumVertices, kNone); // new numbers
    std::vector<uint32_t> firsts;                           // old numbers by new ones
    {
        PlaceTable table(mesh.mVertices, mesh.mNumVertices);
        for (uint32_t i = 0; i < mesh.mNumVertices; ++i) {
            if (!used[i])
                continue;
            const uint32_t first = table.Find(i, [&](uint32_t other) { return arrays.AreAlike(other, i); });
            if (first == i) {
                joined[i] = static_cast<uint32_t>(firsts.size());
                firsts.push_back(i);
            } else
                joined[i] = joined[first];
        }
    }
    for (uint32_t i = 0; i < firsts.size(); ++i) { // never further on than where they were
        mesh.mVertices[i] = mesh.mVertices[firsts[i]];
        arrays.Move(firsts[i], i);
    }
    for (unsigned i = 0; i < mesh.mNumFaces; ++i)
        for (unsigned corner = 0; corner < mesh.mFaces[i].mNumIndices; ++corner)
            if (unsigned& index = mesh.mFaces[i].mIndices[corner]; index < mesh.mNumVertices)
                index = joined[index];
    mesh.mNumVertices = static_cast<unsigned>(firsts.size());
}

} // namespace fernwick
