#include "host/documents/ModelShape.h"
#include "host/geometry/Mesh.h"
#include "host/scene/Placement.h"
#include <algorithm>

namespace fernwick {

namespace {

bool HaveUVs(const std::vector<ElementDescription>& elements)
{
    return std::all_of(elements.begin(), elements.end(), [](const ElementDescription& element) {
        return (element.fGeometry == nullptr || element.fUVSets > 0) && HaveUVs(element.fChildren);
    });
}

void Append(const MeshDescription& mesh, const TTransform3D& place, bool withUVs, MeshDescription& all)
{
    const auto first = static_cast<unsigned>(all.fPoints.size());
    for (const TVector3& point : mesh.fPoints)
        all.fPoints.push_back(Placed(place, point));
    for (const TVector3& normal : mesh.fNormals)
        all.fNormals.push_back(Turned(place, normal));
    if (withUVs)
        all.fUVs.insert(all.fUVs.end(), mesh.fUVs.begin(), mesh.fUVs.end());
    for (const auto& [a, b, c] : mesh.fTriangles)
        all.fTriangles.push_back({first + a, first + b, first + c});
}

void Append(const std::vector<ElementDescription>& elements, const TTransform3D& parent, bool withUVs,
    MeshDescription& all)
{
    for (const ElementDescription& element : elements) {
        const TTransform3D place = Composed(parent, element.fPlace);
        const MeshDescription* const mesh
            = element.fGeometry != nullptr ? element.fGeometry->Mesh() : nullptr;
        if (mesh != nullptr)
            Append(*mesh, place, withUVs, all);
        Append(element.fChildren, place, withUVs, all);
    }
}

/// Moves points to a bounding sphere of the radius around the origin.
void Frame(std::vector<TVector3>& points, float radius)
{
    TVector3 low = points.front();
    TVector3 high = points.front();
    for (const TVector3& point : points)
        for (uint32_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], point[axis]);
            high[axis] = std::max(high[axis], point[axis]);
        }
    TVector3 middle;
    for (uint32_t axis = 0; axis < 3; ++axis)
        middle[axis] = low[axis] + (high[axis] - low[axis]) / 2;
    double farthest = 0;
    for (TVector3& point : points) {
        point = point - middle;
        farthest = std::max(farthest, Length(point));
    }
    const auto factor = static_cast<float>(farthest > 0 ? radius / farthest : 1);
    for (TVector3& point : points)
        point *= factor;
}

} // namespace

std::shared_ptr<const Geometry> MergeMeshes(
    const std::vector<ElementDescription>& elements, std::optional<float> radius)
{
    MeshDescription all;
    Append(elements, {}, HaveUVs(elements), all);
    if (all.fTriangles.empty())
        return nullptr;
    if (radius)
        Frame(all.fPoints, *radius);
    return MakeMesh(std::move(all));
}

} // namespace fernwick
