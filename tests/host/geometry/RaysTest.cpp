#include "host/geometry/Mesh.h"
#include "host/geometry/Primitives.h"
#include "host/scene/Placement.h"
#include "host/scene/Scene.h"
#include "tests/support/BakeText.h"
#include <thread>

using namespace fernwick;

namespace {

constexpr double kTurn = 6.283185307179586;

/// A sphere of triangles, two for each cell of a grid in U and V.
MeshDescription SphereMesh(float radius, unsigned edge, bool hasNormals)
{
    MeshDescription mesh;
    for (unsigned v = 0; v <= edge; ++v)
        for (unsigned u = 0; u <= edge; ++u) {
            const double up = kTurn / 2 * (v / double(edge) - 0.5);
            const double around = u == edge ? 0 : kTurn * u / edge;
            const TVector3 normal = {static_cast<float>(std::cos(up) * std::sin(around)),
                static_cast<float>(std::sin(up)), static_cast<float>(std::cos(up) * std::cos(around))};
            mesh.fPoints.emplace_back(radius * normal[0], radius * normal[1], radius * normal[2]);
            if (hasNormals)
                mesh.fNormals.push_back(normal);
            mesh.fUVs.emplace_back(float(u) / float(edge), float(v) / float(edge));
            const unsigned corner = v * (edge + 1) + u;
            if (u < edge && v > 0 && v < edge)
                mesh.fTriangles.push_back({corner, corner + 1, corner + edge + 2});
            if (u < edge && v < edge - 1)
                mesh.fTriangles.push_back({corner, corner + edge + 2, corner + edge + 1});
        }
    return mesh;
}

/// An element with a shape, away from the origin and turned.
class RaysTest : public ShaderTest {
protected:
    static MCCountedPtr<Scene> SceneOf(std::shared_ptr<const Geometry> shape)
    {
        SceneDescription description;
        ElementDescription& element = description.fElements.emplace_back();
        element.fName = "Surface";
        element.fPlace = RotatedBy({20, -35, 50});
        element.fPlace.fTranslation = {3, -2, 1};
        element.fGeometry = std::move(shape);
        return MakeCounted<Scene>(description);
    }
    static SceneElement& SurfaceOf(Scene& scene) { return *scene.Elements()[1]; }

    /// The record of a ray that is given in the element's coordinates; nothing for a miss.
    static std::optional<RayHitRecord> Cast(Scene& scene, const TVector3& origin, const TVector3& direction,
        float nearLimit = 0, float farLimit = 1e30f)
    {
        SceneElement& surface = SurfaceOf(scene);
        void* face = nullptr;
        EXPECT_EQ(surface.QueryInterface(IID_IInstance, &face), MC_S_OK);
        MCCountedPtr<IInstance> instance;
        *instance.Address() = static_cast<IInstance*>(face);
        TRay3D ray;
        ray.fOrigin = Placed(surface.Transform(), origin);
        ray.fDirection = Turned(surface.Transform(), direction);
        RayHitRecord record(-3);
        record.fBlock.fShading.fInstance = instance.Get();
        RayHitParams params(ray, record);
        params.fNearLimit = nearLimit;
        params.fFarLimit = farLimit;
        if (!instance->CastRay(params))
            return std::nullopt;
        EXPECT_EQ(record.fBlock.fShading.fInstance, instance.Get()); // the caller's
        EXPECT_EQ(record.fKind, -3);
        return record;
    }

    /// The Gaussian curvature that a Curvature shader finds just there, by the same forms.
    static double GaussianAt(const RayHitRecord& record)
    {
        const ShadingIn& at = record.fBlock.fShading;
        const TVector3 alongU = Transformed(record.fShapeMatrix, at.fDerivU);
        const TVector3 alongV = Transformed(record.fShapeMatrix, at.fDerivV);
        const double mixed = Dot(at.fDerivU, at.fDerivV);
        return (Dot(alongU, at.fDerivU) * Dot(alongV, at.fDerivV)
                   - Dot(alongV, at.fDerivU) * Dot(alongV, at.fDerivU))
            / (Dot(at.fDerivU, at.fDerivU) * Dot(at.fDerivV, at.fDerivV) - mixed * mixed);
    }
};

TEST_F(RaysTest, AHitIsCountedInLengthsOfTheDirectionWithinInclusiveLimits)
{
    const auto scene = SceneOf(MakeSphere(2));
    const auto hit = Cast(*scene, {0, 0, 8}, {0, 0, -3});
    ASSERT_TRUE(hit);
    EXPECT_NEAR(hit->fHitDistance, 2, 1e-5);
    const ShadingIn& at = hit->fBlock.fShading;
    EXPECT_NEAR(at.fPointLocal[2], 2, 1e-5);
    EXPECT_NEAR(at.fUV[0], 0.5, 1e-5);
    EXPECT_NEAR(at.fUV[1], 0.5, 1e-5);
    EXPECT_LT(Length(at.fPointGlobal - Placed(SurfaceOf(*scene).Transform(), {0, 0, 2})), 1e-5);
    EXPECT_LT(Length(at.fNormalGlobal - Turned(SurfaceOf(*scene).Transform(), {0, 0, 1})), 1e-5);
    EXPECT_EQ(hit->fHitPoint, at.fPointGlobal);

    EXPECT_FALSE(Cast(*scene, {0, 0, 8}, {0, 0, -3}, 0, 1.99f));
    EXPECT_NEAR(Cast(*scene, {0, 0, 8}, {0, 0, -3}, 2.01f)->fHitDistance, 10 / 3.0, 1e-5); // the far side
    EXPECT_FALSE(Cast(*scene, {0, 0, 8}, {0, 0, 3}));
    EXPECT_FALSE(Cast(*scene, {0, 2.01f, 8}, {0, 0, -3}));
    EXPECT_FALSE(Cast(*scene, {0, 0, 8}, {kNaN, 0, -3}));
}

/// Points on the way along U and V agree with the derivatives, and normals with the shape matrix.
TEST_F(RaysTest, DerivativesAndShapeMatrixOfEveryShapeAreThoseOfItsPointsAndNormals)
{
    const struct {
        const char* name;
        std::shared_ptr<const Geometry> shape;
        float tolerance;
    } rows[] = {
        {"sphere", MakeSphere(1.5f), 2e-3f},
        {"torus", MakeTorus(2, 0.75f), 2e-3f},
        {"saddle", MakeSaddle(2, 0.6f), 2e-3f},
        {"plane", MakePlane(2, 3), 2e-3f},
        {"box", MakeBox({1, 2, 3}), 2e-3f},
        {"mesh", MakeMesh(SphereMesh(1.5f, 160, true)), 0.06f},
    };
    for (const auto& [name, shape, tolerance] : rows) {
        SCOPED_TRACE(name);
        const auto scene = SceneOf(shape);
        const TVector3 aim
            = std::string_view(name) == "torus" ? TVector3(2.1f, 0.2f, 0) : TVector3(0.2f, 0.1f, 0);
        const auto cast = [&](float x, float y) { return Cast(*scene, aim + TVector3(x, y, 6), {0, 0, -1}); };
        const auto middle = cast(0, 0);
        ASSERT_TRUE(middle);
        const ShadingIn& at = middle->fBlock.fShading;
        EXPECT_NEAR(Length(at.fNormalGlobal), 1, 1e-5);
        EXPECT_NEAR(Dot(at.fNormalGlobal, at.fDerivU) / Length(at.fDerivU), 0, 0.03);
        for (const auto& [x, y] : {std::pair(0.01f, 0.0f), std::pair(0.0f, 0.01f)}) {
            const auto there = cast(x, y);
            const auto before = cast(-x, -y);
            ASSERT_TRUE(there && before);
            const ShadingIn& next = there->fBlock.fShading;
            const ShadingIn& last = before->fBlock.fShading;
            const TVector3 step = next.fPointGlobal - last.fPointGlobal;
            TVector3 byU = at.fDerivU;
            byU *= next.fUV[0] - last.fUV[0];
            TVector3 byV = at.fDerivV;
            byV *= next.fUV[1] - last.fUV[1];
            EXPECT_LT(Length(byU + byV - step) / Length(step), tolerance);
            const TVector3 bend = next.fNormalGlobal - last.fNormalGlobal;
            EXPECT_LT(Length(Transformed(middle->fShapeMatrix, step) - bend) / Length(step), tolerance);
        }
    }
}

TEST_F(RaysTest, TheCurvatureOfSpheresAndToriIsTheStatedOne)
{
    for (const float radius : {0.5f, 1.0f, 4.0f}) {
        SCOPED_TRACE(radius);
        const auto exact = SceneOf(MakeSphere(radius));
        const double expected = 1.0 / (radius * radius);
        for (const TVector3& side : {TVector3(1, 0, 0), TVector3(0.3f, 0.8f, -0.5f), TVector3(0, 0, -1)}) {
            TVector3 origin = side;
            origin *= 4 * radius;
            EXPECT_NEAR(GaussianAt(*Cast(*exact, origin, -side)), expected, 1e-3 * expected);
        }
        const MeshDescription mesh = SphereMesh(radius, 71, radius < 4);
        EXPECT_NEAR(static_cast<double>(mesh.fTriangles.size()), 10000, 100);
        const auto triangles = SceneOf(MakeMesh(mesh));
        for (const TVector3& side : {TVector3(1, 0.1f, 0), TVector3(0.3f, 0.8f, -0.5f),
                 TVector3(0.01f, 0.2f, 1), TVector3(0.1f, -1, 0.05f)}) {
            TVector3 origin = side;
            origin *= 4 * radius;
            EXPECT_NEAR(GaussianAt(*Cast(*triangles, origin, -side)), expected, 0.05 * expected) << side[1];
        }
    }
    const auto torus = SceneOf(MakeTorus(2, 0.5f));
    EXPECT_NEAR(GaussianAt(*Cast(*torus, {5, 0, 0}, {-1, 0, 0})), 1 / (0.5 * 2.5), 1e-3);
    EXPECT_NEAR(GaussianAt(*Cast(*torus, {0, 0, 0}, {0, 1, 0})), -1 / (0.5 * 1.5), 1e-3);
    EXPECT_NEAR(GaussianAt(*Cast(*torus, {0, 2, 5}, {0, 0, -1})), 0, 1e-3);
    const auto saddle = SceneOf(MakeSaddle(2, 0.5f));
    EXPECT_NEAR(GaussianAt(*Cast(*saddle, {0, 0, 1}, {0, 0, -1})), -1, 1e-3); // z = (x^2 - y^2) / 2
    EXPECT_EQ(GaussianAt(*Cast(*SceneOf(MakePlane(1, 1)), {0, 0, 1}, {0, 0, -1})), 0);
    EXPECT_EQ(GaussianAt(*Cast(*SceneOf(MakeBox({1, 1, 1})), {0, 0, 1}, {0, 0, -1})), 0);
}

TEST_F(RaysTest, ThreadsThatAskForACurvatureAtOnceGetThatOfOne)
{
    const MeshDescription mesh = SphereMesh(2, 48, true); // in several batches
    const auto shapes
        = [triangles = static_cast<unsigned>(mesh.fTriangles.size())](const Geometry& geometry) {
              std::vector<float> numbers;
              for (unsigned triangle = 0; triangle < triangles; triangle += 7)
                  for (const auto& row : geometry.ShapeAt({0, triangle, 0.25f, 0.5f}).fRows)
                      numbers.insert(numbers.end(), row, row + 3);
              return numbers;
          };
    const std::vector<float> expected = shapes(*MakeMesh(mesh));
    const auto asked = MakeMesh(mesh);
    std::vector<std::vector<float>> found(4);
    {
        std::vector<std::jthread> threads;
        for (auto& numbers : found)
            threads.emplace_back([&] { numbers = shapes(*asked); });
    }
    EXPECT_THAT(found, testing::Each(expected));
}

/// The rim of a wide fan has its hub alone around it, and a hub has all of the rim.
TEST_F(RaysTest, AWideFanIsFittedInTimeAndFlat)
{
    MeshDescription fan;
    fan.fPoints.emplace_back();
    constexpr unsigned kSpokes = 20000;
    for (unsigned i = 0; i < kSpokes; ++i) {
        const double turn = kTurn * i / kSpokes;
        fan.fPoints.emplace_back(static_cast<float>(std::cos(turn)), static_cast<float>(std::sin(turn)), 0);
        fan.fTriangles.push_back({0, 1 + i, 1 + (i + 1) % kSpokes});
    }
    const ShapeMatrix shape = MakeMesh(fan)->ShapeAt({0, 5, 0.25f, 0.25f});
    for (const auto& row : shape.fRows)
        EXPECT_THAT(row, testing::Each(testing::FloatNear(0, 1e-6f)));
}

TEST_F(RaysTest, RaysMeetEverySideOfATorusAndMissItsHole)
{
    const auto torus = SceneOf(MakeTorus(2, 0.5f));
    EXPECT_FALSE(Cast(*torus, {0, 0, 5}, {0, 0, -1}));
    EXPECT_FALSE(Cast(*torus, {1.4f, 0, 5}, {0, 0, -1}));
    std::vector<double> distances;
    for (float nearLimit = 0; const auto hit = Cast(*torus, {-100, 0, 0}, {2, 0, 0}, nearLimit);) {
        distances.push_back(hit->fHitDistance);
        nearLimit = static_cast<float>(hit->fHitDistance) + 1e-3f;
    }
    using testing::DoubleNear;
    EXPECT_THAT(distances,
        testing::ElementsAre(DoubleNear(48.75, 1e-4), DoubleNear(49.25, 1e-4), DoubleNear(50.75, 1e-4),
            DoubleNear(51.25, 1e-4)));
}

TEST_F(RaysTest, NormalsAreLaidOutOverTheUVSquareCellByCell)
{
    std::map<std::pair<int, int>, TVector3> cells;
    MakeBox({1, 2, 3})->LayOutNormals(6, [&cells](int u, int v, const TVector3& normal) {
        cells[{u, v}] = normal;
    });
    EXPECT_EQ(cells.size(), 36u);
    for (const auto& [place, normal] : cells) {
        TVector3 expected;
        expected[static_cast<uint32_t>(place.first / 2)] = place.second < 3 ? 1.0f : -1.0f;
        EXPECT_EQ(normal, expected) << place.first << ", " << place.second;
    }
    TVector3 middle;
    MakeSphere(7)->LayOutNormals(
        5, [&middle](int u, int v, const TVector3& normal) { middle = u == 2 && v == 2 ? normal : middle; });
    EXPECT_LT(Length(middle - TVector3(0, 0, 1)), 1e-6);
}

} // namespace
