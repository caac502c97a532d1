#include "shaders/patterns/ThreadWalks.h"
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

ThreadTable Built(int32_t count, const int32_t (&widths)[5], int32_t gap)
{
    ThreadTable table;
    table.Build(count, widths, gap);
    return table;
}

/// A thread and a place on it.
struct Hit {
    int32_t fThread;
    ThreadProbe fProbe;
};

Hit Across(const ThreadTable& table, float x, bool rounded)
{
    ThreadProbe probe{9, 9, 9}; // left by an earlier sample
    const int32_t thread = WalkAcross(table, x, rounded, probe);
    return {thread, probe};
}

MATCHER_P3(IsProbe, offset, half, t, "")
{
    *result_listener << arg.fOffset << ", " << arg.fHalf << ", " << arg.fT;
    return std::fabs(arg.fOffset - offset) < 1e-6 && std::fabs(arg.fHalf - half) < 1e-6
        && std::fabs(arg.fT - t) < 1e-6;
}

MATCHER_P4(IsHit, thread, offset, half, t, "")
{
    *result_listener << arg.fThread << " at ";
    return arg.fThread == thread
        && testing::ExplainMatchResult(IsProbe(offset, half, t), arg.fProbe, result_listener);
}

TEST(ThreadTableTest, LaysThreadsBetweenHalfGaps)
{
    const ThreadTable equal = Built(2, {1, 1, 8, 8, 8}, 1);
    EXPECT_THAT(equal.fEdge, testing::ElementsAre(0.125f, 0.375f, 0.625f, 0.875f, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(equal.fCenter[1], 0.75f);
    EXPECT_EQ(equal.fHalfWidth[1], 0.125f);
    const ThreadTable uneven = Built(3, {2, 1, 3, 8, 8}, 2);
    const float twelfths[] = {1, 3, 5, 6, 8, 11};
    for (int edge = 0; edge < 6; ++edge)
        EXPECT_EQ(uneven.fEdge[edge], twelfths[edge] / 12.0f);
    EXPECT_NEAR(Built(1, {INT32_MAX, 1, 1, 1, 1}, INT32_MAX).fEdge[1], 0.75, 1e-6);
}

TEST(ThreadTableTest, WalksAcrossThreadsThatBeginInclusiveAndEndExclusive)
{
    const ThreadTable table = Built(2, {1, 1, 1, 1, 1}, 1);
    EXPECT_THAT(Across(table, 0.125f, true), IsHit(1, 0.125f, 0.125f, 0));
    EXPECT_THAT(Across(table, 0.8125f, true), IsHit(2, -0.0625f, 0.125f, 0.75f));
    EXPECT_THAT(Across(table, 0.8125f, false), IsHit(2, 0, 0.125f, 0.75f));
    for (const float gap : {0.0f, 0.375f, 0.875f, 1.0f, 1.2f, -0.25f, NAN, INFINITY, -INFINITY})
        EXPECT_THAT(Across(table, gap, true), IsHit(0, 0, 1, 0)) << gap;
    EXPECT_THAT(Across(Built(2, {0, 0, 0, 0, 0}, 0), 0.5f, true), IsHit(0, 0, 1, 0)); // a tile of no width
}

TEST(ThreadTableTest, TheFirstThreadWinsWhereThreadsOverlap)
{
    const ThreadTable table = Built(2, {2, 2, 0, 0, 0}, -1); // from -0.25 to 0.75 and from 0.25 to 1.25
    EXPECT_THAT(Across(table, -0.125f, true), IsHit(1, 0.375f, 0.5f, 0.125f));
    EXPECT_THAT(Across(table, 0.5f, true), IsHit(1, -0.25f, 0.5f, 0.75f));
    EXPECT_THAT(Across(table, 0.75f, true), IsHit(2, 0, 0.5f, 0.5f));
    EXPECT_THAT(Across(Built(2, {3, 10, 0, 0, 0}, -4), -0.5f, true), IsHit(2, 0.9f, 1, 0.05f)); // -0.6 to 1.4
    EXPECT_THAT(
        Across(Built(3, {-6, -9, 1, 0, 0}, 5), -2, true), IsHit(0, 0, 1, 0)); // before the second thread
    for (const float center : {0.25f, 0.75f})
        EXPECT_FALSE(std::signbit(Across(table, center, true).fProbe.fOffset));
}

TEST(ThreadSpansTest, TheFirstAndTheLastAreOneAcrossTheSeam)
{
    ThreadSpans spans[5];
    const ThreadTable crossing = Built(4, {1, 1, 1, 1, 1}, 1);  // edges at the odd sixteenths
    spans[2].Build(crossing, {true, true, false, false, true}); // there is no fifth
    ASSERT_EQ(spans[2].fCrossings, 2);                          // cut at 1/16, 3/16, 5/16 and 7/16
    const auto along = [&spans](int32_t thread, float x) { return WalkAlong(thread, spans, x); };
    EXPECT_THAT(along(3, 0.01f), IsProbe(-0.26, 0.3125, 0.916));
    EXPECT_THAT(along(3, 0.9f), IsProbe(-0.15, 0.3125, 0.74));
    EXPECT_THAT(along(3, 0.2f), IsProbe(0.05, 0.0625, 0.1));
    EXPECT_THAT(along(3, 0.1875f), IsProbe(0.0625, 0.0625, 0));
    EXPECT_FALSE(std::signbit(along(3, 0.25f).fOffset)); // exactly on the centre
    for (const float elsewhere : {0.0625f, 0.1f, 0.3125f, 1.0f, -0.1f, NAN})
        EXPECT_THAT(along(3, elsewhere), IsProbe(0, 1, 0)) << elsewhere;
    spans[0].Build(crossing, {});
    EXPECT_THAT(along(1, 0.25f), IsProbe(0, 1, 0)); // never dives
    EXPECT_THAT(along(0, 0.25f), IsProbe(0, 1, 0)); // a gap
}

} // namespace
