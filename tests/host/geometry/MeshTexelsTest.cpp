#include "host/geometry/MeshTexels.h"
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <random>

using namespace fernwick;

namespace {

constexpr double kMiddle = 0.5;

/// A mesh of the corners, three a triangle, whose points are their UV.
MeshDescription Flat(const std::vector<TVector2>& corners)
{
    MeshDescription mesh;
    for (const TVector2& corner : corners) {
        mesh.fPoints.emplace_back(corner[0], corner[1], 0.0f);
        mesh.fNormals.emplace_back(0.0f, 0.0f, 1.0f);
        mesh.fUVs.push_back(corner);
        if (mesh.fPoints.size() % 3 == 0) {
            const auto first = static_cast<unsigned>(mesh.fPoints.size()) - 3;
            mesh.fTriangles.push_back({first, first + 1, first + 2});
        }
    }
    return mesh;
}

const std::vector<TVector2> kQuad = {{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 1}, {0, 1}};

/// The texels of a whole picture, found tile by tile, and what is counted of all.
struct Found {
    std::vector<Texel> texels;
    size_t covered = 0;
    size_t overlapped = 0;

    Found(const std::vector<UVMesh>& meshes, int width, int height, const UVTile& tile = {},
        double right = kMiddle, double down = kMiddle)
        : texels(static_cast<size_t>(width * height))
    {
        constexpr int kSide = 128;
        const MeshTexels all(meshes, tile, width, height);
        std::vector<Texel> part;
        for (int top = 0; top < height; top += kSide)
            for (int left = 0; left < width; left += kSide) {
                const TexelArea area
                    = {left, top, std::min(left + kSide, width), std::min(top + kSide, height)};
                all.Find(area, right, down, part);
                for (int y = area.fTop; y < area.fBottom; ++y)
                    std::copy_n(part.begin() + (y - top) * (area.fRight - left), area.fRight - left,
                        texels.begin() + y * width + left);
            }
        for (const Texel& texel : texels) {
            covered += texel.IsCovered() ? 1 : 0;
            overlapped += texel.fIsOverlapped ? 1 : 0;
        }
    }
};

TEST(MeshTexelsTest, AQuadIsTheUVSquare)
{
    const MeshDescription quad = Flat(kQuad);
    const auto shape = MakeMesh(quad);
    for (const int side : {1, 8, 200}) {
        const Found found({{&quad}}, side, side);
        EXPECT_EQ(found.covered, static_cast<size_t>(side * side));
        EXPECT_EQ(found.overlapped, 0u);
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                const SurfacePoint point
                    = shape->PointAt(found.texels[static_cast<size_t>(y * side + x)].Hit());
                const auto u = static_cast<float>((x + 0.5) / side);
                const auto v = static_cast<float>((side - y - 0.5) / side);
                const float slack = side == 200 ? 1e-7f : 0; // eighths are exact
                ASSERT_NEAR(point.fUV[0], u, slack) << x << ' ' << y;
                ASSERT_NEAR(point.fUV[1], v, slack) << x << ' ' << y;
            }
    }
}

/// Each texel of the square lies in one of the triangles around a place in it, wherever in the pixel it is looked at.
TEST(MeshTexelsTest, AFanOfSliversCoversEachTexelOnce)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> anywhere(0, 1);
    const TVector2 middles[] = {
        {0.5f, 0.5f}, {static_cast<float>(100.5 / 256), static_cast<float>(37.5 / 256)}, {0.1234567f, 1e-6f}};
    for (const TVector2& middle : middles)
        for (const bool isMirrored : {false, true}) {
            std::vector<float> places = {0, 0.5f, 1}; // along each side, on centres of texels and between
            for (int i = 0; i < 120; ++i)
                places.push_back(i % 2 == 0 ? anywhere(random) : std::floor(anywhere(random) * 512) / 512);
            std::sort(places.begin(), places.end());
            std::vector<TVector2> rim;
            for (const float place : places)
                rim.emplace_back(place, 0.0f);
            for (const float place : places)
                rim.emplace_back(1.0f, place);
            for (const float place : places)
                rim.emplace_back(1 - place, 1.0f);
            for (const float place : places)
                rim.emplace_back(0.0f, 1 - place);
            std::vector<TVector2> corners;
            for (size_t i = 0; i + 1 < rim.size(); ++i) {
                corners.insert(corners.end(), {middle, rim[i], rim[i + 1]});
                if (isMirrored)
                    std::swap(corners[corners.size() - 1], corners[corners.size() - 2]);
            }
            const MeshDescription fan = Flat(corners);
            for (const double place : {0.0, 0.5, 1.0 / 3}) {
                const Found found({{&fan}}, 256, 256, {}, place, place == 0 ? 0.5 : place);
                EXPECT_EQ(found.covered, 256u * 256) << middle[0] << ' ' << place;
                EXPECT_EQ(found.overlapped, 0u) << middle[0] << ' ' << place;
            }
        }
}

TEST(MeshTexelsTest, WhereTrianglesOverlapTheFirstCounts)
{
    const MeshDescription quad = Flat(kQuad);
    const MeshDescription corner = Flat({{0, 0}, {0.5f, 0}, {0, 0.5f}, {0, 0}, {0, 0.5f}, {0.5f, 0}});
    const Found below({{&quad}, {&corner}}, 300, 300);
    const Found above({{&corner}, {&quad}}, 300, 300);
    EXPECT_EQ(below.covered, 300u * 300);
    EXPECT_EQ(above.covered, 300u * 300);
    EXPECT_EQ(below.overlapped, above.overlapped);
    EXPECT_NEAR(static_cast<double>(above.overlapped), 150 * 150 / 2.0, 80);
    const size_t lowerLeft = 299 * 300;
    EXPECT_EQ(below.texels[lowerLeft].fMesh, 0u);
    EXPECT_EQ(above.texels[lowerLeft].fMesh, 0u);
    EXPECT_EQ(above.texels[lowerLeft].fTriangle, 0u);
    EXPECT_EQ(above.texels[299].fMesh, 1u);
    EXPECT_FALSE(Found({{&corner}}, 300, 300).texels[299].IsCovered());
}

TEST(MeshTexelsTest, TilesAndWhatLiesOnThemAreCounted)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    std::vector<TVector2> corners = {{0, 0}, {1.0000001f, 0}, {0, 1}}; // no texel of the next tile
    const auto add
        = [&corners](std::initializer_list<TVector2> more) { corners.insert(corners.end(), more); };
    add({{2.5f, 3.5f}, {2.25f, 3.5f}, {2.25f, 3.25f}});
    add({{3.25f, 1.5f}, {4.5f, 1.5f}, {4.5f, 1.75f}});     // over two tiles
    add({{-0.5f, 0.5f}, {-0.75f, 0.5f}, {-0.75f, 0.75f}}); // mirrored
    add({{10.5f, 0.5f}, {10.25f, 0.5f}, {10.25f, 0.25f}});
    add({{0, 0}, {0.5f, 0.5f}, {1, 1}});
    add({{0, kNaN}, {0.5f, 0.5f}, {0, 1}});
    add({{0, 0}, {0, 1e30f}, {1, 1}});
    const MeshDescription mesh = Flat(corners);
    const UVSurvey survey = SurveyUVs({{&mesh}}, 64, 64);
    EXPECT_EQ(survey.fTriangles, 8u);
    EXPECT_EQ(survey.fMirrored, 1u);
    EXPECT_EQ(survey.fFlat, 3u);
    EXPECT_EQ(survey.fOutside, 2u);
    EXPECT_THAT(survey.fTiles, testing::ElementsAre(UVTile{0, 0}, UVTile{3, 1}, UVTile{4, 1}, UVTile{2, 3}));
    EXPECT_EQ(survey.fTiles.back().Number(), 1033);

    const Found there({{&mesh}}, 64, 64, {2, 3});
    EXPECT_NEAR(static_cast<double>(there.covered), 16 * 16 / 2.0, 16);
    const Texel& texel = there.texels[(63 - 20) * 64 + 17];
    ASSERT_TRUE(texel.IsCovered());
    const SurfacePoint point = MakeMesh(mesh)->PointAt(texel.Hit());
    EXPECT_NEAR(point.fUV[0], 2 + 17.5 / 64, 1e-6);
    EXPECT_NEAR(point.fUV[1], 3 + 20.5 / 64, 1e-6);
    EXPECT_EQ(Found({{&mesh}}, 64, 64, {1, 0}).covered, 0u);
}

TEST(MeshTexelsTest, FurtherSetsLayOutAnotherWay)
{
    MeshDescription mesh = Flat(kQuad);
    mesh.fFurtherUVs.push_back(mesh.fUVs);
    for (TVector2& uv : mesh.fFurtherUVs[0])
        uv[0] = 1 - uv[0] / 2; // the right half, mirrored
    const Found found({{&mesh, 1}}, 64, 64);
    EXPECT_EQ(found.covered, 32u * 64);
    EXPECT_EQ(SurveyUVs({{&mesh, 1}}, 64, 64).fMirrored, 2u);
    SurfacePoint point = MakeMesh(mesh)->PointAt(found.texels[63 * 64 + 63].Hit());
    EXPECT_EQ(point.fUV[0], 1.0f / 64);
    FindDerivatives(mesh, mesh.UVSet(1), mesh.fTriangles[0], point);
    EXPECT_EQ(point.fDerivU[0], -2);
    EXPECT_EQ(point.fDerivV[1], 1);
}

} // namespace
