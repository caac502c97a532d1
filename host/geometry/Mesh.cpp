#include "host/geometry/Mesh.h"
#include "host/geometry/Cross.h"
#include "host/geometry/EmbreeDevice.h"
#include "host/geometry/MeshCurvature.h"
#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

TVector3 Scaled(TVector3 vector, float factor) { return vector *= factor; }

TBBox3D BoundsOf(const std::vector<TVector3>& points)
{
    TBBox3D box;
    for (const TVector3& point : points)
        for (uint32_t axis = 0; axis < 3; ++axis) {
            box.fMin[axis] = std::min(box.fMin[axis], point[axis]);
            box.fMax[axis] = std::max(box.fMax[axis], point[axis]);
        }
    return box;
}

TVector3 EdgeTo(const MeshDescription& mesh, const std::array<unsigned, 3>& corners, size_t end)
{
    return mesh.fPoints[corners[end]] - mesh.fPoints[corners[0]];
}

class TriangleShape final : public Geometry {
public:
    explicit TriangleShape(MeshDescription description)
        : fMesh(std::move(description)), fBounds(BoundsOf(fMesh.fPoints))
    {
        if (fMesh.fUVs.empty())
            LayOutByBounds();
        const RTCGeometry geometry = rtcNewGeometry(EmbreeDevice(), RTC_GEOMETRY_TYPE_TRIANGLE);
        auto* const points = static_cast<float*>(rtcSetNewGeometryBuffer(
            geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, 3 * sizeof(float), fMesh.fPoints.size()));
        for (size_t i = 0; i < fMesh.fPoints.size(); ++i)
            for (uint32_t axis = 0; axis < 3; ++axis)
                points[3 * i + axis] = fMesh.fPoints[i][axis];
        rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
            fMesh.fTriangles.data(), 0, sizeof fMesh.fTriangles.front(), fMesh.fTriangles.size());
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(fRays, geometry);
        rtcReleaseGeometry(geometry);
        rtcCommitScene(fRays);
    }

    SurfacePoint PointAt(const SurfaceHit& hit) const override
    {
        const Weights weights(hit);
        const std::array<unsigned, 3>& corners = fMesh.fTriangles[hit.fPrimitive];
        SurfacePoint point;
        for (size_t i = 0; i < 3; ++i) {
            point.fPoint += Scaled(fMesh.fPoints[corners[i]], weights.values[i]);
            for (uint32_t axis = 0; axis < 2; ++axis)
                point.fUV[axis] += fMesh.fUVs[corners[i]][axis] * weights.values[i];
        }
        point.fNormal = NormalAt(corners, weights);
        FindDerivatives(fMesh, fMesh.fUVs, corners, point);
        return point;
    }

    ShapeMatrix ShapeAt(const SurfaceHit& hit) const override
    {
        const Weights weights(hit);
        const std::array<unsigned, 3>& corners = fMesh.fTriangles[hit.fPrimitive];
        ShapeMatrix shape;
        for (size_t i = 0; i < 3; ++i)
            for (int row = 0; row < 3; ++row)
                for (int column = 0; column < 3; ++column)
                    shape.fRows[row][column]
                        += weights.values[i] * fCurvature.At(corners[i]).fRows[row][column];
        return shape;
    }

    TBBox3D Bounds() const override { return fBounds; }
    const MeshDescription* Mesh() const override { return &fMesh; }

    void LayOutNormals(
        int edge, const std::function<void(int u, int v, const TVector3& normal)>& lay) const override
    {
        for (const std::array<unsigned, 3>& corners : fMesh.fTriangles)
            LayOutTriangle(corners, edge, lay);
    }

private:
    /// Of the three corners at a place of a triangle.
    struct Weights {
        std::array<float, 3> values;

        explicit Weights(const SurfaceHit& hit) : values{1 - hit.fU - hit.fV, hit.fU, hit.fV} { }
        explicit Weights(const std::array<float, 3>& given) : values(given) { }
    };

    MeshDescription fMesh;
    TBBox3D fBounds;
    MeshCurvature fCurvature{fMesh};

    void LayOutByBounds()
    {
        const TVector3 size = fBounds.fMax - fBounds.fMin;
        for (const TVector3& point : fMesh.fPoints) {
            TVector2& uv = fMesh.fUVs.emplace_back();
            for (uint32_t axis = 0; axis < 2; ++axis)
                uv[axis] = size[axis] > 0 ? (point[axis] - fBounds.fMin[axis]) / size[axis] : 0;
        }
    }

    TVector3 NormalAt(const std::array<unsigned, 3>& corners, const Weights& weights) const
    {
        TVector3 normal;
        if (!fMesh.fNormals.empty())
            for (size_t i = 0; i < 3; ++i)
                normal += Scaled(fMesh.fNormals[corners[i]], weights.values[i]);
        if (Length(normal) == 0)
            normal = Cross(EdgeTo(fMesh, corners, 1), EdgeTo(fMesh, corners, 2));
        Normalize(normal);
        return normal;
    }

    /// The cells whose centres lie in the triangle of the UV plane, its edges included.
    void LayOutTriangle(const std::array<unsigned, 3>& corners, int edge,
        const std::function<void(int u, int v, const TVector3& normal)>& lay) const
    {
        double place[3][2];
        for (size_t i = 0; i < 3; ++i)
            for (uint32_t axis = 0; axis < 2; ++axis)
                place[i][axis] = static_cast<double>(fMesh.fUVs[corners[i]][axis]) * edge - 0.5;
        const auto twiceArea = [](const double* a, const double* b, const double* c) {
            return (b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]);
        };
        const double whole = twiceArea(place[0], place[1], place[2]);
        if (!(std::fabs(whole) > 0))
            return;
        int low[2];
        int high[2];
        for (int axis = 0; axis < 2; ++axis) {
            const auto [least, most] = std::minmax({place[0][axis], place[1][axis], place[2][axis]});
            low[axis] = static_cast<int>(std::ceil(std::clamp(least, 0.0, edge + 0.0)));
            high[axis] = static_cast<int>(std::floor(std::clamp(most, -1.0, edge - 1.0)));
        }
        for (int u = low[0]; u <= high[0]; ++u)
            for (int v = low[1]; v <= high[1]; ++v) {
                const double cell[2] = {static_cast<double>(u), static_cast<double>(v)};
                const double shares[3] = {twiceArea(cell, place[1], place[2]) / whole,
                    twiceArea(place[0], cell, place[2]) / whole, twiceArea(place[0], place[1], cell) / whole};
                if (std::min({shares[0], shares[1], shares[2]}) < 0)
                    continue;
                lay(u, v,
                    NormalAt(corners,
                        Weights(std::array{static_cast<float>(shares[0]), static_cast<float>(shares[1]),
                            static_cast<float>(shares[2])})));
            }
    }
};

} // namespace

void FindDerivatives(const MeshDescription& mesh, const std::vector<TVector2>& uvs,
    const std::array<unsigned, 3>& corners, SurfacePoint& point)
{
    const TVector3 first = EdgeTo(mesh, corners, 1);
    const TVector3 second = EdgeTo(mesh, corners, 2);
    float u[2];
    float v[2];
    for (size_t i = 0; i < 2; ++i) {
        u[i] = uvs[corners[i + 1]][0] - uvs[corners[0]][0];
        v[i] = uvs[corners[i + 1]][1] - uvs[corners[0]][1];
    }
    const float area = u[0] * v[1] - u[1] * v[0];
    point.fDerivU = Scaled(Scaled(first, v[1]) - Scaled(second, v[0]), 1 / area);
    point.fDerivV = Scaled(Scaled(second, u[0]) - Scaled(first, u[1]), 1 / area);
    const double across = Length(Cross(point.fDerivU, point.fDerivV));
    if (across > 0 && std::isfinite(across))
        return;
    point.fDerivU = first;
    Normalize(point.fDerivU);
    point.fDerivV = Cross(point.fNormal, point.fDerivU);
    Normalize(point.fDerivV);
}

std::shared_ptr<const Geometry> MakeMesh(MeshDescription description)
{
    return std::make_shared<TriangleShape>(std::move(description));
}

std::shared_ptr<const Geometry> MakeBox(const TVector3& size)
{
    MeshDescription mesh;
    for (uint32_t axis = 0; axis < 3; ++axis)
        for (const float side : {1.0f, -1.0f}) {
            const uint32_t alongU = (axis + 1) % 3;
            const uint32_t alongV = (axis + 2) % 3;
            const auto first = static_cast<unsigned>(mesh.fPoints.size());
            for (const TVector2& corner : {TVector2(0, 0), TVector2(1, 0), TVector2(1, 1), TVector2(0, 1)}) {
                TVector3 point;
                point[axis] = side * size[axis] / 2;
                point[alongU] = side * (corner[0] - 0.5f) * size[alongU];
                point[alongV] = (corner[1] - 0.5f) * size[alongV];
                mesh.fPoints.push_back(point);
                TVector3 normal;
                normal[axis] = side;
                mesh.fNormals.push_back(normal);
                mesh.fUVs.emplace_back(
                    (static_cast<float>(axis) + corner[0]) / 3, ((side > 0 ? 0.0f : 1.0f) + corner[1]) / 2);
            }
            mesh.fTriangles.push_back({first, first + 1, first + 2});
            mesh.fTriangles.push_back({first, first + 2, first + 3});
        }
    return MakeMesh(std::move(mesh));
}

} // namespace fernwick
