#include "optics/ColorSystems.h"
#include "optics/GamutSearch.h"
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using ColorSystems::sRGBSystem;

Float3 DisplayXYZ(const Float3& rgb)
{
    return XyYToXYZ(sRGBSystem.xyYRed) * rgb[0] + XyYToXYZ(sRGBSystem.xyYGreen) * rgb[1]
        + XyYToXYZ(sRGBSystem.xyYBlue) * rgb[2];
}

Float3 DisplayLab(const Float3& rgb) { return XYZToLab(DisplayXYZ(rgb), XyYToXYZ(sRGBSystem.xyYWhite)); }

float Length(const Float3& way) { return std::hypot(way[0], way[1], way[2]); }

TEST(ProjectToGamut, FindsAPointOfTheLineOnTheSurfaceOfTheCube)
{
    int hitsOfFace[7] = {};
    // Colours around the cube, each well outside by one channel at least.
    for (const float r : {-0.3f, 0.2f, 0.6f, 1.4f})
        for (const float g : {-0.2f, 0.1f, 0.7f, 1.3f})
            for (const float b : {-0.4f, 0.15f, 0.8f, 1.5f}) {
                const Float3 rgb = {r, g, b};
                const Float3 from = DisplayLab(rgb);
                const bool inside = *std::min_element(rgb.begin(), rgb.end()) > 0
                    && *std::max_element(rgb.begin(), rgb.end()) < 1;
                if (inside || from[0] < 10 || from[0] > 100)
                    continue;
                GamutSearch search;
                const Residue found = ProjectToGamut(sRGBSystem, DisplayXYZ(rgb), 0.9f, 0, 0, 7, search);
                ASSERT_TRUE(search.fFound) << r << " " << g << " " << b;
                ++hitsOfFace[found.fFace];

                const Float3 onSurface = FaceColor(found);
                const auto [least, most] = std::minmax_element(onSurface.begin(), onSurface.end());
                EXPECT_TRUE(*least == 0 || *most == 1);
                EXPECT_TRUE(*least >= 0 && *most <= 1);
                const Float3 lab = DisplayLab(onSurface);
                EXPECT_LT(Length(lab - found.fLab), 0.4f) << "u, v and the point are one";
                const Float3 way = Float3{from[0] * 0.9f, 0, 0} - from;
                const Float3 part = lab - from;
                const float t
                    = (part[0] * way[0] + part[1] * way[1] + part[2] * way[2]) / (Length(way) * Length(way));
                EXPECT_LT(Length(part - way * t), 0.4f) << "on the line";
                EXPECT_TRUE(t >= 0 && t <= 1) << t;
            }
    for (int face = 1; face <= 6; ++face)
        EXPECT_GT(hitsOfFace[face], 0) << face;
}

TEST(ProjectToGamut, SkipsFaceFourOnDemandAndFallsBackToBlack)
{
    const Float3 yellowish = DisplayXYZ({0.5f, 0.6f, -0.1f});
    const Float3 bluish = DisplayXYZ({0.3f, -0.2f, 0.5f});
    for (const bool skip : {false, true}) {
        GamutSearch search;
        search.fSkipBottomFace = skip;
        EXPECT_EQ(ProjectToGamut(sRGBSystem, bluish, 0.9f, 0, 0, 7, search).fFace, 1);

        search.fFound = false;
        const Residue found = ProjectToGamut(sRGBSystem, yellowish, 0.9f, 0, 0, 7, search);
        EXPECT_EQ(search.fFound, !skip);
        EXPECT_EQ(found.fFace, skip ? 1 : 4);
        EXPECT_EQ(found.t == 1 && found.u == 0 && found.v == 0, skip);
    }

    GamutSearch search;
    const Residue inside = ProjectToGamut(sRGBSystem, DisplayXYZ({0.4f, 0.5f, 0.6f}), 0.9f, 0, 0, 7, search);
    EXPECT_FALSE(search.fFound);
    EXPECT_EQ(FaceColor(inside), (Float3{0, 0, 0}));
    EXPECT_EQ(inside.fLab, (Float3{0, 0, 0}));

    search = {.fFound = true}; // a flag left set ends the work before it begins
    EXPECT_EQ(ProjectToGamut(sRGBSystem, yellowish, 0.9f, 0, 0, 7, search).fFace, 1);
    EXPECT_EQ(search.fCellCount, 0);

    for (const float odd : {std::nanf(""), INFINITY, 0.0f, -1.0f}) {
        search = {};
        ProjectToGamut(sRGBSystem, {odd, odd, odd}, 0.9f, 0, 0, 7, search);
        ProjectToGamut(sRGBSystem, yellowish, 0.9f, 0, 0, -1, search); // neither may run away
    }
}

TEST(SearchCell, OfTwoCrossingsTakesTheOneNearerTheAnchor)
{
    // A chord of the curved face of red and green, made longer at both ends.
    const Float3 reddish = DisplayLab({0.9f, 0.1f, 0});
    const Float3 greenish = DisplayLab({0.1f, 0.9f, 0});
    const Float3 extra = (greenish - reddish) * 0.05f;
    GamutQuery query = {reddish - extra, greenish + extra, {0, 0, 0}, DisplayXYZ({0, 1, 0}),
        DisplayXYZ({1, 0, 0}), XyYToXYZ(sRGBSystem.xyYWhite)};
    GamutCell root;
    root.fLevel = 7;
    for (const float green : {0.9f, 0.1f}) {
        GamutSearch search;
        const Residue found = SearchCell(root, query, search);
        EXPECT_NEAR(found.u, green, 0.01);
        EXPECT_NEAR(found.v, 1 - green, 0.01);
        std::swap(query.LabP1, query.LabP2);
    }
}

TEST(SearchCell, VisitsTheCornersOfAHalfInItsOwnOrder)
{
    // A line that meets the curved face of red 1 twice within one half of itself.
    constexpr float kPlaces[4][2] = {{0.2f, 0.25f}, {0.3f, 0.85f}, {0.85f, 0.3f}, {0.75f, 0.8f}}; // u, v
    constexpr size_t kRanks[2][4] = {{0, 1, 2, 3}, {0, 2, 1, 3}}; // low, high half
    for (size_t one = 0; one < 4; ++one)
        for (size_t two = 0; two < 4; ++two)
            for (const bool high : {false, true}) {
                if (one == two)
                    continue;
                const Float3 first = DisplayLab({1, kPlaces[one][0], kPlaces[one][1]});
                const Float3 second = DisplayLab({1, kPlaces[two][0], kPlaces[two][1]});
                const Float3 way = (second - first) * (1 / 0.3f);
                const Float3 start = first - way * (high ? 0.6f : 0.1f);
                const GamutQuery query = {start, start + way, DisplayXYZ({1, 0, 0}), DisplayXYZ({1, 1, 0}),
                    DisplayXYZ({1, 0, 1}), XyYToXYZ(sRGBSystem.xyYWhite)};
                GamutCell root;
                root.fLevel = 7;
                GamutSearch search;
                const Residue found = SearchCell(root, query, search);
                const float* const expected = kPlaces[kRanks[high][one] < kRanks[high][two] ? one : two];
                EXPECT_NEAR(found.u, expected[0], 1e-3) << one << " " << two << " " << high;
                EXPECT_NEAR(found.v, expected[1], 1e-3) << one << " " << two << " " << high;
            }
}

TEST(SearchCell, DividesAsOftenAsItsLevelSays)
{
    const Float3 lab = DisplayLab({1, 0.3f, 0.4f});
    const GamutQuery query = {lab + Float3{9, 9, 9}, lab - Float3{9, 9, 9}, DisplayXYZ({1, 0, 0}),
        DisplayXYZ({1, 1, 0}), DisplayXYZ({1, 0, 1}), XyYToXYZ(sRGBSystem.xyYWhite)};
    for (const auto& [level, cells] : {std::pair{-1, 0}, {0, 0}, {1, 8}, {2, 32}}) {
        GamutCell root = TestCell({}, query);
        root.fLevel = level;
        GamutSearch search;
        SearchCell(root, query, search);
        EXPECT_EQ(search.fCellCount, cells) << level;
    }
}

TEST(SplitCell, GivesEachChildTheCornersItSharesWithItsParent)
{
    GamutCell parent;
    parent.fUMin = 0.5f;
    parent.fVMax = 0.25f;
    parent.fLevel = 3;
    parent.fFace = 5;
    parent.fLine0 = {1, 2, 3};
    parent.fLine1 = {4, 5, 6};
    Float3 GamutCell::*const corners[] = {&GamutCell::fCornerMinMin, &GamutCell::fCornerMinMax,
        &GamutCell::fCornerMaxMin, &GamutCell::fCornerMaxMax};
    for (size_t i = 0; i < 4; ++i)
        (parent.*corners[i])[0] = static_cast<float>(i);

    GamutSearch search{.fCellCount = 16};
    const auto children = SplitCell(parent, search);
    EXPECT_EQ(search.fCellCount, 24);
    for (size_t i = 0; i < 8; ++i) {
        const GamutCell& child = children[i];
        const bool a = i >= 4, b = i / 2 % 2, c = i % 2;
        EXPECT_EQ(child.fTMin, a ? 0.5f : 0) << i;
        EXPECT_EQ(child.fTMax, a ? 1 : 0.5f) << i;
        EXPECT_EQ(child.fUMin, b ? 0.75f : 0.5f) << i;
        EXPECT_EQ(child.fUMax, b ? 1 : 0.75f) << i;
        EXPECT_EQ(child.fVMin, c ? 0.125f : 0) << i;
        EXPECT_EQ(child.fVMax, c ? 0.25f : 0.125f) << i;
        EXPECT_EQ(child.fLevel, 2);
        EXPECT_EQ(child.fFace, 5);
        EXPECT_EQ(child.fLine0, a ? kUnsetLab : parent.fLine0) << i;
        EXPECT_EQ(child.fLine1, a ? parent.fLine1 : kUnsetLab) << i;
        for (size_t k = 0; k < 4; ++k)
            EXPECT_EQ(child.*corners[k], k == i % 4 ? parent.*corners[k] : kUnsetLab) << i << " " << k;
    }
}

TEST(TestCell, TouchingBoxesCountAndOnlyUnsetCachesAreFilled)
{
    const GamutQuery query = {{50, 10, -20}, {45, 0, 0}, {0, 0, 0}, DisplayXYZ({1, 0, 0}),
        DisplayXYZ({0, 0, 1}), XyYToXYZ(sRGBSystem.xyYWhite)};
    GamutCell cell;
    cell.fTMin = 0.5f;
    cell.fLine1 = {40, 5, kUnset};
    cell.fCornerMinMin = {1, kUnset, 3};
    cell.fCornerMaxMax = {47.5f, 5, 0};
    const GamutCell tested = TestCell(cell, query);
    EXPECT_EQ(tested.fLine0, (Float3{47.5f, 5, -10}));
    EXPECT_EQ(tested.fLine1, (Float3{40, 5, 0}));
    EXPECT_EQ(tested.fCornerMaxMax, cell.fCornerMaxMax);
    EXPECT_LT(Length(tested.fCornerMinMin), 1e-4f) << "black, formed anew as a whole";
    EXPECT_LT(Length(tested.fCornerMaxMin - DisplayLab({1, 0, 0})), 1e-3f);
    EXPECT_LT(Length(tested.fCornerMinMax - DisplayLab({0, 0, 1})), 1e-3f);
    EXPECT_EQ(tested.fHit, 1);

    GamutCell apart = tested;
    for (Float3* corner :
        {&apart.fCornerMinMin, &apart.fCornerMinMax, &apart.fCornerMaxMin, &apart.fCornerMaxMax})
        *corner = {47.5f, 7, -10};
    EXPECT_EQ(TestCell(apart, query).fHit, 0);
    apart.fCornerMinMax = {60, 5, -10};
    EXPECT_EQ(TestCell(apart, query).fHit, 1) << "5 meets 5";
    apart.fLine0 = apart.fLine1 = {40, 5, std::nanf("")};
    EXPECT_EQ(TestCell(apart, query).fHit, 0);
}

class LeafTest : public testing::Test {
protected:
    /// A leaf over a unit square in L and a, its high corner raised to b = `bend`, crossed by a line.
    Residue Search(const Float3& from, const Float3& to, float bend = 0, const Float3& lowCorner = {0, 0, 0})
    {
        GamutCell leaf;
        leaf.fTMin = 0.5f;
        leaf.fUMax = 0.5f;
        leaf.fVMin = 0.75f;
        leaf.fFace = 3;
        leaf.fCornerMinMin = lowCorner;
        leaf.fCornerMaxMin = {1, 0, 0};
        leaf.fCornerMinMax = {0, 1, 0};
        leaf.fCornerMaxMax = {1, 1, bend};
        leaf.fLine0 = from;
        leaf.fLine1 = to;
        fSearch = {};
        return SearchCell(leaf, {}, fSearch);
    }
    GamutSearch fSearch;
};

TEST_F(LeafTest, TheHighTriangleMirrorsAllItsParameters)
{
    const Residue low = Search({0.25f, 0.5f, -1}, {0.25f, 0.5f, 3});
    EXPECT_TRUE(fSearch.fFound);
    EXPECT_EQ(low.t, 0.625f);
    EXPECT_EQ(low.u, 0.125f);
    EXPECT_EQ(low.v, 0.875f);
    EXPECT_EQ(low.fFace, 3);
    EXPECT_EQ(low.fLab, (Float3{0.25f, 0.5f, 0}));

    const Residue high = Search({0.75f, 0.5f, -1}, {0.75f, 0.5f, 3});
    EXPECT_EQ(high.t, 0.875f);
    EXPECT_EQ(high.u, 0.375f);
    EXPECT_EQ(high.v, 0.875f);
    EXPECT_EQ(high.fLab, (Float3{0.75f, 0.5f, 0}));

    for (const auto& [from, to] :
        {std::pair{Float3{0.2f, 1.5f, -1}, Float3{0.2f, 1.5f, 1}},
            {Float3{0.2f, 0.2f, 1}, Float3{0.2f, 0.2f, 2}}, {Float3{0.2f, 0.2f, 1}, Float3{0.6f, 0.2f, 1}}}) {
        const Residue none = Search(from, to);
        EXPECT_FALSE(fSearch.fFound);
        EXPECT_TRUE(fSearch.fMissed);
        EXPECT_EQ(none.fFace, 3);
        EXPECT_EQ(none.fLab, (Float3{0, 0, 0}));
    }
}

TEST_F(LeafTest, BetweenTheTrianglesTheSmallerSumWinsAndATieGoesToTheLow)
{
    // Above the bend the line meets the low plane past the diagonal, at L = a, and the high plane before it.
    const auto u = [&](float slope) {
        const float lowPlace = 0.25f; // L + a - 1 where b is 0
        return Search(
            {0.25f, 0.25f, slope * (-0.5f - lowPlace)}, {0.75f, 0.75f, slope * (0.5f - lowPlace)}, -1)
            .u;
    };
    EXPECT_EQ(u(-0.5f), 0.5f * 0.625f) << "a tie";
    EXPECT_NEAR(u(-0.75f), 0.5f * 0.625f, 1e-5) << "low";
    EXPECT_NEAR(u(-0.25f), 0.5f * (1 - 0.25f / 3) / 2, 1e-5) << "high";
    EXPECT_TRUE(fSearch.fFound);
    // A low triangle without extent has no sum.
    EXPECT_NEAR(Search({0.4f, 0.4f, -1}, {0.4f, 0.4f, 1}, 0, {1, 0, 0}).u, 0.5f * 0.4f, 1e-5);
}

} // namespace
