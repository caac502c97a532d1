#include "host/geometry/MeshCurvature.h"
#include <CGAL/Monge_via_jet_fitting.h>
#include <CGAL/Simple_cartesian.h>
#include <algorithm>
#include <cmath>
#include <map>

namespace fernwick {

namespace {

using Kernel = CGAL::Simple_cartesian<double>;
using Fitting = CGAL::Monge_via_jet_fitting<Kernel>;

constexpr size_t kDegree = 2;
constexpr size_t kFewestPoints = 6; ///< that decide a surface of second degree
constexpr size_t kEnoughPoints = 18;
constexpr int kMostRings = 3;

/// The vertices of a mesh with those at one place and of one normal joined.
class JoinedVertices {
public:
    explicit JoinedVertices(const MeshDescription& mesh)
    {
        std::map<std::array<float, 6>, size_t> places;
        for (size_t i = 0; i < mesh.fPoints.size(); ++i) {
            const TVector3& point = mesh.fPoints[i];
            std::array<float, 6> key = {point[0], point[1], point[2]};
            if (!mesh.fNormals.empty())
                for (uint32_t axis = 0; axis < 3; ++axis)
                    key[3 + axis] = std::round(mesh.fNormals[i][axis] * 256);
            const auto [place, isNew] = places.emplace(key, fFirsts.size());
            if (isNew)
                fFirsts.push_back(i);
            fJoined.push_back(place->second);
        }
        fNeighbours.resize(fFirsts.size());
        for (const std::array<unsigned, 3>& corners : mesh.fTriangles)
            for (size_t i = 0; i < 3; ++i) {
                const size_t here = fJoined[corners[i]];
                for (const size_t there : {fJoined[corners[(i + 1) % 3]], fJoined[corners[(i + 2) % 3]]})
                    if (std::find(fNeighbours[here].begin(), fNeighbours[here].end(), there)
                        == fNeighbours[here].end())
                        fNeighbours[here].push_back(there);
            }
    }

    size_t Count() const { return fFirsts.size(); }
    size_t Joined(size_t vertex) const { return fJoined[vertex]; }
    size_t First(size_t joined) const { return fFirsts[joined]; }

    /// A vertex and, ring by ring, those around it, until they are enough.
    std::vector<size_t> Around(size_t joined) const
    {
        std::vector<size_t> found = {joined};
        size_t ring = 0;
        for (int rings = 0; rings < kMostRings && found.size() < kEnoughPoints; ++rings)
            for (const size_t end = found.size(); ring < end; ++ring)
                for (const size_t neighbour : fNeighbours[found[ring]])
                    if (std::find(found.begin(), found.end(), neighbour) == found.end())
                        found.push_back(neighbour);
        return found;
    }

private:
    std::vector<size_t> fJoined; // by vertex
    std::vector<size_t> fFirsts; // by joined vertex, the first of its vertices
    std::vector<std::vector<size_t>> fNeighbours;
};

/// The normals of flat triangles, summed by their area at each joined vertex; for a mesh without normals.
std::vector<TVector3> SummedNormals(const MeshDescription& mesh, const JoinedVertices& vertices)
{
    std::vector<TVector3> sums(vertices.Count());
    for (const std::array<unsigned, 3>& corners : mesh.fTriangles) {
        const TVector3 first = mesh.fPoints[corners[1]] - mesh.fPoints[corners[0]];
        const TVector3 second = mesh.fPoints[corners[2]] - mesh.fPoints[corners[0]];
        const TVector3 across = {first[1] * second[2] - first[2] * second[1],
            first[2] * second[0] - first[0] * second[2], first[0] * second[1] - first[1] * second[0]};
        for (const unsigned corner : corners)
            sums[vertices.Joined(corner)] += across;
    }
    return sums;
}

void AddDirection(ShapeMatrix& shape, double curvature, const Kernel::Vector_3& direction)
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            shape.fRows[row][column] += static_cast<float>(curvature * direction[row] * direction[column]);
}

ShapeMatrix Fit(const std::vector<Kernel::Point_3>& points, const TVector3& normal)
{
    ShapeMatrix shape;
    if (points.size() < kFewestPoints)
        return shape;
    Fitting fitting;
    Fitting::Monge_form form = fitting(points.begin(), points.end(), kDegree, kDegree);
    form.comply_wrt_given_normal(Kernel::Vector_3(normal[0], normal[1], normal[2]));
    // A surface that falls away from its normal has negative curvatures here, while its normals spread.
    AddDirection(shape, -form.principal_curvatures(0), form.maximal_principal_direction());
    AddDirection(shape, -form.principal_curvatures(1), form.minimal_principal_direction());
    return shape;
}

} // namespace

std::vector<ShapeMatrix> FindVertexShapes(const MeshDescription& mesh)
{
    const JoinedVertices vertices(mesh);
    const std::vector<TVector3> summed
        = mesh.fNormals.empty() ? SummedNormals(mesh, vertices) : std::vector<TVector3>();
    std::vector<ShapeMatrix> joinedShapes;
    std::vector<Kernel::Point_3> points;
    for (size_t joined = 0; joined < vertices.Count(); ++joined) {
        points.clear();
        for (const size_t near : vertices.Around(joined)) {
            const TVector3& point = mesh.fPoints[vertices.First(near)];
            points.emplace_back(point[0], point[1], point[2]);
        }
        joinedShapes.push_back(
            Fit(points, summed.empty() ? mesh.fNormals[vertices.First(joined)] : summed[joined]));
    }
    std::vector<ShapeMatrix> shapes;
    for (size_t i = 0; i < mesh.fPoints.size(); ++i)
        shapes.push_back(joinedShapes[vertices.Joined(i)]);
    return shapes;
}

} // namespace fernwick
