#include "shaders/patterns/ThreadWalks.h"
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

ThreadTable Built(int32_t count, const int32_t (&widths)[5], int32_t gap)
{
    ThreadTable table;
    table.fEdge[9] = table.fEdge[10] = 9; // left by an earlier build
    float scratch = 0;
    table.Build(count, widths, gap, scratch);
    EXPECT_EQ(scratch, 0);
    return table;
}

MATCHER_P4(IsProbe, thread, offset, half, t, "")
{
    *result_listener << arg.fThread << ", " << arg.fOffset << ", " << arg.fHalf << ", " << arg.fT;
    return arg.fThread == thread && std::fabs(arg.fOffset - offset) < 1e-6
        && std::fabs(arg.fHalf - half) < 1e-6 && std::fabs(arg.fT - t) < 1e-6;
}

TEST(ThreadTableTest, LaysThreadsBetweenHalfGaps)
{
    const ThreadTable equal = Built(2, {1, 1, 8, 8, 8}, 1);
    EXPECT_THAT(equal.fEdge, testing::ElementsAre(0.125f, 0.375f, 0.625f, 0.875f, 1.125f, 0, 0, 0, 0, 0, 9));
    EXPECT_EQ(equal.fCenter[1], 0.75f);
    EXPECT_EQ(equal.fHalfWidth[1], 0.125f);
    const ThreadTable uneven = Built(3, {2, 1, 3, 8, 8}, 2);
    const float twelfths[] = {1, 3, 5, 6, 8, 11, 13};
    for (int edge = 0; edge < 7; ++edge)
        EXPECT_EQ(uneven.fEdge[edge], twelfths[edge] / 12.0f);
    EXPECT_EQ(Built(5, {1, 1, 1, 1, 1}, 1).fEdge[10], 10.5f); // not divided
    EXPECT_NEAR(Built(1, {INT32_MAX, 1, 1, 1, 1}, INT32_MAX).fEdge[1], 0.75, 1e-6);
}

TEST(ThreadTableTest, WalksAcrossThreadsThatBeginInclusiveAndEndExclusive)
{
    const ThreadTable table = Built(2, {1, 1, 1, 1, 1}, 1);
    EXPECT_THAT(WalkAcross(table, 0.125f, true), IsProbe(1, 0.125f, 0.125f, 0));
    EXPECT_THAT(WalkAcross(table, 0.8125f, true), IsProbe(2, -0.0625f, 0.125f, 0.75f));
    EXPECT_THAT(WalkAcross(table, 0.8125f, false), IsProbe(2, 0, 0.125f, 0.75f));
    for (const float gap : {0.0f, 0.375f, 0.875f, 1.0f, 1.2f, -0.25f, NAN, INFINITY, -INFINITY})
        EXPECT_THAT(WalkAcross(table, gap, true), IsProbe(0, 0, 1, 0)) << gap;
    EXPECT_THAT(
        WalkAcross(Built(2, {0, 0, 0, 0, 0}, 0), 0.5f, true), IsProbe(0, 0, 1, 0)); // a tile of no width
}

TEST(ThreadSpansTest, TheFirstAndTheLastAreOneAcrossTheSeam)
{
    ThreadSpans spans[5];
    const ThreadTable crossing = Built(4, {1, 1, 1, 1, 1}, 1);  // edges at the odd sixteenths
    spans[2].Build(crossing, {true, true, false, false, true}); // there is no fifth
    ASSERT_EQ(spans[2].fCrossings, 2);                          // cut at 1/16, 3/16, 5/16 and 7/16
    const auto along = [&spans](int32_t thread, float x) { return WalkAlong(thread, spans, x); };
    EXPECT_THAT(along(3, 0.01f), IsProbe(3, -0.26, 0.3125, 0.916));
    EXPECT_THAT(along(3, 0.9f), IsProbe(3, -0.15, 0.3125, 0.74));
    EXPECT_THAT(along(3, 0.2f), IsProbe(3, 0.05, 0.0625, 0.1));
    EXPECT_THAT(along(3, 0.1875f), IsProbe(3, 0.0625, 0.0625, 0));
    for (const float elsewhere : {0.0625f, 0.1f, 0.3125f, 1.0f, -0.1f, NAN})
        EXPECT_THAT(along(3, elsewhere), IsProbe(3, 0, 1, 0)) << elsewhere;
    spans[0].Build(crossing, {});
    EXPECT_THAT(along(1, 0.25f), IsProbe(1, 0, 1, 0)); // never dives
    EXPECT_THAT(along(0, 0.25f), IsProbe(0, 0, 1, 0)); // a gap
}

} // namespace
