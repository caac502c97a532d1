#include "host/geometry/MeshCurvature.h"
#include "host/geometry/Cross.h"
#include "host/geometry/JoinedVertices.h"
#include "host/threads/SharedWork.h"
#include <Eigen/Dense>
#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

constexpr Eigen::Index kCoefficients = 6; ///< of a surface of second degree
constexpr size_t kEnoughPoints = 18;
constexpr int kMostRings = 3;
constexpr size_t kBatch = 1024; ///< vertices

/// The normals of flat triangles, summed by their area at each joined vertex; for a mesh without normals.
std::vector<TVector3> SummedNormals(const MeshDescription& mesh, const JoinedVertices& vertices)
{
    std::vector<TVector3> sums(vertices.Count());
    for (const std::array<unsigned, 3>& corners : mesh.fTriangles) {
        const TVector3 across = Cross(mesh.fPoints[corners[1]] - mesh.fPoints[corners[0]],
            mesh.fPoints[corners[2]] - mesh.fPoints[corners[0]]);
        for (const unsigned corner : corners)
            sums[vertices.Joined(corner)] += across;
    }
    return sums;
}

Eigen::Vector3d VectorOf(const TVector3& vector) { return {vector[0], vector[1], vector[2]}; }

/// The axes along which points spread, the farthest first; the last one stands across their surface.
Eigen::Matrix3d AxesOf(const Eigen::Matrix3Xd& points)
{
    const Eigen::Matrix3Xd spread = points.colwise() - points.rowwise().mean().eval();
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(spread * spread.transpose());
    return solver.eigenvectors().rowwise().reverse(); // they come by ascending spread
}

/// The derivative of the normal at the first of some points, by fitting an osculating jet of degree 2 to them: a
/// height over the plane in which they spread most, by least squares (F. Cazals, M. Pouget: Estimating differential
/// quantities using polynomial fitting of osculating jets, Computer Aided Geometric Design 22, 2005).
///
/// The surface is where z - h(x, y) is 0. Its gradient g is (-hx, -hy, 1), n = g / |g|, and the derivative of n along
/// the surface is P H P / |g|, with H the second derivatives of z - h and P = 1 - n n^T.
/// @param side  a normal to the outer side, of any length
Eigen::Matrix3d Fit(const Eigen::Matrix3Xd& points, const Eigen::Vector3d& side)
{
    if (points.cols() < kCoefficients)
        return Eigen::Matrix3d::Zero();
    const Eigen::Matrix3d axes = AxesOf(points);
    Eigen::Matrix3Xd places = axes.transpose() * (points.colwise() - points.col(0).eval());
    const double unit = places.topRows<2>().cwiseAbs().mean();
    if (!(unit > 0))
        return Eigen::Matrix3d::Zero();
    places /= unit; // so that no coefficient outweighs another

    const auto x = places.row(0).transpose().array();
    const auto y = places.row(1).transpose().array();
    Eigen::Matrix<double, Eigen::Dynamic, kCoefficients> terms(points.cols(), kCoefficients);
    terms << Eigen::ArrayXd::Ones(points.cols()), x, y, x * x / 2, x * y, y * y / 2;
    const Eigen::Vector<double, kCoefficients> jet
        = terms.completeOrthogonalDecomposition().solve(places.row(2).transpose());

    const Eigen::Vector3d gradient(-jet[1], -jet[2], 1);
    const Eigen::Vector3d normal = gradient.normalized();
    Eigen::Matrix3d bend = Eigen::Matrix3d::Zero();
    bend.topLeftCorner<2, 2>() << -jet[3], -jet[4], -jet[4], -jet[5];
    const Eigen::Matrix3d across = Eigen::Matrix3d::Identity() - normal * normal.transpose();
    const double sign = (axes * normal).dot(side) < 0 ? -1 : 1;
    const double factor = sign / (gradient.norm() * unit);
    return axes * (across * bend * across * factor) * axes.transpose();
}

} // namespace

/// The fits of all joined vertices of a mesh.
class VertexFits {
public:
    explicit VertexFits(const MeshDescription& mesh)
        : fMesh(mesh), fVertices(mesh),
          fSummed(mesh.fNormals.empty() ? SummedNormals(mesh, fVertices) : std::vector<TVector3>()),
          fShapes(fVertices.Count()), fWork(static_cast<int>((fVertices.Count() + kBatch - 1) / kBatch),
                                          [this](int batch) { FitBatch(static_cast<size_t>(batch)); })
    { }

    const ShapeMatrix& At(size_t vertex)
    {
        fWork.Finish();
        return fShapes[fVertices.Joined(vertex)];
    }

private:
    const MeshDescription& fMesh;
    JoinedVertices fVertices;
    std::vector<TVector3> fSummed; // normals by joined vertex, where the mesh has none
    std::vector<ShapeMatrix> fShapes;
    SharedWork fWork;

    void FitBatch(size_t batch)
    {
        std::vector<uint32_t> around;
        Eigen::Matrix3Xd points;
        const size_t end = std::min((batch + 1) * kBatch, fVertices.Count());
        for (size_t joined = batch * kBatch; joined < end; ++joined) {
            fVertices.FindAround(static_cast<uint32_t>(joined), kEnoughPoints, kMostRings, around);
            points.resize(3, static_cast<Eigen::Index>(around.size()));
            for (size_t i = 0; i < around.size(); ++i)
                points.col(static_cast<Eigen::Index>(i))
                    = VectorOf(fMesh.fPoints[fVertices.First(around[i])]);
            const TVector3& side
                = fSummed.empty() ? fMesh.fNormals[fVertices.First(joined)] : fSummed[joined];
            const Eigen::Matrix3d fit = Fit(points, VectorOf(side));
            for (int row = 0; row < 3; ++row)
                for (int column = 0; column < 3; ++column)
                    fShapes[joined].fRows[row][column] = static_cast<float>(fit(row, column));
        }
    }
};

MeshCurvature::MeshCurvature(const MeshDescription& mesh) : fMesh(mesh) { }
MeshCurvature::~MeshCurvature() = default;

const ShapeMatrix& MeshCurvature::At(size_t vertex) const
{
    std::call_once(fBegun, [this] { fFits = std::make_unique<VertexFits>(fMesh); });
    return fFits->At(vertex);
}

} // namespace fernwick
