#include "host/documents/SoundMesh.h"
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace fernwick {

namespace {

constexpr float kFarthest = 1e18f; // its square, and those of lengths between two such, a float still holds

template <class Vector> bool IsWithin(const Vector& vector, uint32_t size, float limit)
{
    for (uint32_t i = 0; i < size; ++i)
        if (!(std::fabs(vector[i]) <= limit))
            return false;
    return true;
}

} // namespace

void SoundMesh::Reserve(size_t vertices, size_t triangles)
{
    fPlaces.reserve(vertices);
    fMesh.fPoints.reserve(vertices);
    fMesh.fNormals.reserve(vertices);
    fMesh.fUVs.reserve(vertices); // where there are none, the shape makes some
    for (std::vector<TVector2>& uvs : fMesh.fFurtherUVs)
        uvs.reserve(vertices);
    fMesh.fTriangles.reserve(triangles);
}

void SoundMesh::AddVertex(const TVector3& point, const TVector3& normal, std::span<const TVector2> uvs)
{
    constexpr float kGreatest = std::numeric_limits<float>::max();
    if (!IsWithin(point, 3, kFarthest)) {
        fPlaces.push_back(kLeftOut);
        ++fVerticesLeftOut;
        return;
    }
    fPlaces.push_back(static_cast<unsigned>(fMesh.fPoints.size()));
    fMesh.fPoints.push_back(point);
    const bool isNormalSound = IsWithin(normal, 3, kGreatest);
    fMesh.fNormals.push_back(isNormalSound ? normal : TVector3());
    bool areUVsSound = true;
    for (size_t set = 0; set < uvs.size(); ++set) {
        const bool isSound = IsWithin(uvs[set], 2, kGreatest);
        (set == 0 ? fMesh.fUVs : fMesh.fFurtherUVs[set - 1]).push_back(isSound ? uvs[set] : TVector2(0, 0));
        areUVsSound = areUVsSound && isSound;
    }
    if (!isNormalSound || !areUVsSound)
        ++fMendedVertices;
}

void SoundMesh::AddTriangle(const std::array<size_t, 3>& corners)
{
    ++fTriangles;
    const std::array triangle = {fPlaces[corners[0]], fPlaces[corners[1]], fPlaces[corners[2]]};
    if (std::find(triangle.begin(), triangle.end(), kLeftOut) != triangle.end()) {
        ++fTrianglesLeftOut;
        return;
    }
    fMesh.fTriangles.push_back(triangle);
    if (!HasArea(triangle))
        ++fFlatTriangles;
}

bool SoundMesh::HasArea(const std::array<unsigned, 3>& triangle) const
{
    double sides[2][3];
    for (size_t i = 0; i < 2; ++i)
        for (uint32_t axis = 0; axis < 3; ++axis)
            sides[i][axis] = static_cast<double>(fMesh.fPoints[triangle[i + 1]][axis])
                - fMesh.fPoints[triangle[0]][axis];
    const auto& [first, second] = sides;
    return first[1] * second[2] != first[2] * second[1] || first[2] * second[0] != first[0] * second[2]
        || first[0] * second[1] != first[1] * second[0];
}

std::vector<std::string> SoundMesh::Damages() const
{
    std::vector<std::string> damages;
    if (fVerticesLeftOut > 0)
        damages.push_back(fmt::format(
            "{} of {} vertices have a NaN, an infinity or a coordinate beyond 1e18; they and {} of {} "
            "triangles are left out",
            fVerticesLeftOut, fPlaces.size(), fTrianglesLeftOut, fTriangles));
    if (fMendedVertices > 0)
        damages.push_back(
            fmt::format("{} of {} vertices have a NaN or an infinity in their normal or UV; the "
                        "normal of the triangle and 0 stand in",
                fMendedVertices, fPlaces.size()));
    if (fFlatTriangles > 0)
        damages.push_back(fmt::format(
            "{} of {} triangles have no area, and no ray meets them", fFlatTriangles, fTriangles));
    return damages;
}

} // namespace fernwick
