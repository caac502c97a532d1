#include "host/geometry/JoinedVertices.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <unordered_map>

namespace fernwick {

namespace {

/// A place and, of the normal, what tells one side of a crease from the other.
using Key = std::array<uint32_t, 6>;

struct KeyHash {
    size_t operator()(const Key& key) const
    {
        uint64_t hash = 0;
        for (const uint32_t part : key)
            hash = (std::rotl(hash, 5) ^ part) * 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
        return static_cast<size_t>(hash ^ hash >> 32);
    }
};

/// The bits of a number; those of 0 for -0 too.
uint32_t BitsOf(float number) { return std::bit_cast<uint32_t>(number + 0.0f); }

Key KeyOf(const MeshDescription& mesh, size_t vertex)
{
    constexpr float kSteps = 256; // of a normal's coordinate, to either side
    Key key = {};
    for (uint32_t axis = 0; axis < 3; ++axis) {
        key[axis] = BitsOf(mesh.fPoints[vertex][axis]);
        if (!mesh.fNormals.empty())
            key[3 + axis] = BitsOf(std::round(mesh.fNormals[vertex][axis] * kSteps));
    }
    return key;
}

} // namespace

JoinedVertices::JoinedVertices(const MeshDescription& mesh)
{
    Join(mesh);
    FindNeighbours(mesh);
}

void JoinedVertices::Join(const MeshDescription& mesh)
{
    std::unordered_map<Key, uint32_t, KeyHash> places(mesh.fPoints.size());
    fJoined.reserve(mesh.fPoints.size());
    for (size_t i = 0; i < mesh.fPoints.size(); ++i) {
        const auto [place, isNew] = places.emplace(KeyOf(mesh, i), static_cast<uint32_t>(fFirsts.size()));
        if (isNew)
            fFirsts.push_back(static_cast<uint32_t>(i));
        fJoined.push_back(place->second);
    }
}

void JoinedVertices::FindNeighbours(const MeshDescription& mesh)
{
    const auto forEachPair = [&](const auto& visit) {
        for (const std::array<unsigned, 3>& corners : mesh.fTriangles)
            for (size_t i = 0; i < 3; ++i)
                for (const size_t j : {(i + 1) % 3, (i + 2) % 3})
                    if (fJoined[corners[i]] != fJoined[corners[j]])
                        visit(fJoined[corners[i]], fJoined[corners[j]]);
    };
    fStarts.resize(Count() + 1);
    forEachPair([this](uint32_t here, uint32_t) { ++fStarts[here + 1]; });
    for (size_t i = 0; i < Count(); ++i)
        fStarts[i + 1] += fStarts[i];
    fNeighbours.resize(fStarts.back());
    std::vector<size_t> ends(fStarts.begin(), fStarts.end() - 1);
    forEachPair([&](uint32_t here, uint32_t there) { fNeighbours[ends[here]++] = there; });

    // Two triangles along a side name the same neighbour; what is left of each vertex's moves up to the one before.
    auto kept = fNeighbours.begin();
    for (size_t i = 0; i < Count(); ++i) {
        const auto begin = fNeighbours.begin() + static_cast<ptrdiff_t>(fStarts[i]);
        const auto end = fNeighbours.begin() + static_cast<ptrdiff_t>(ends[i]);
        std::sort(begin, end);
        fStarts[i] = static_cast<size_t>(kept - fNeighbours.begin());
        kept = std::unique_copy(begin, end, kept);
    }
    fStarts.back() = static_cast<size_t>(kept - fNeighbours.begin());
    fNeighbours.erase(kept, fNeighbours.end());
}

void JoinedVertices::FindAround(
    uint32_t joined, size_t enough, int mostRings, std::vector<uint32_t>& found) const
{
    constexpr size_t kMostSpokes
        = 1000; // a hub with more isn't walked across, so that a fan's rim stays quick
    found.assign(1, joined);
    std::vector<size_t> rings = {0, 1}; // where each begins, and the end of the last
    while (found.size() < enough && static_cast<int>(rings.size()) - 2 < mostRings) {
        const size_t begin = *(rings.end() - 2);
        const size_t end = rings.back();
        for (size_t i = begin; i < end; ++i)
            if (const auto neighbours = NeighboursOf(found[i]); i == 0 || neighbours.size() <= kMostSpokes)
                found.insert(found.end(), neighbours.begin(), neighbours.end());
        const auto ring = found.begin() + static_cast<ptrdiff_t>(end);
        std::sort(ring, found.end());
        found.erase(std::unique(ring, found.end()), found.end());
        const auto isKnown = [&](uint32_t vertex) {
            for (size_t i = 0; i + 1 < rings.size(); ++i)
                if (std::binary_search(found.begin() + static_cast<ptrdiff_t>(rings[i]),
                        found.begin() + static_cast<ptrdiff_t>(rings[i + 1]), vertex))
                    return true;
            return false;
        };
        found.erase(std::remove_if(ring, found.end(), isKnown), found.end());
        rings.push_back(found.size());
    }
}

} // namespace fernwick
