#include "host/pictures/Margin.h"
#include <algorithm>
#include <gmock/gmock.h>
#include <random>

using namespace fernwick;

namespace {

CoveredRows Picture(int width, int height, const std::vector<std::pair<int, int>>& covered)
{
    CoveredRows rows{width, 0, std::vector<uint8_t>(static_cast<size_t>(width * height))};
    for (const auto& [x, y] : covered)
        rows.fIsCovered[static_cast<size_t>(y * width + x)] = 1;
    return rows;
}

TEST(MarginTest, PixelsGetTheNearestWithinACircleAndOfEqualOnesTheUppermostThenTheLeft)
{
    EXPECT_THAT(FindMargin(Picture(5, 1, {{1, 0}, {3, 0}}), 0, 1, 16),
        testing::ElementsAre(MarginPixel{0, 0, 1, 0}, MarginPixel{2, 0, 1, 0}, MarginPixel{4, 0, 3, 0}));
    EXPECT_THAT(FindMargin(Picture(2, 3, {{1, 0}, {0, 2}}), 1, 2, 1),
        testing::ElementsAre(MarginPixel{0, 1, 0, 2}, MarginPixel{1, 1, 1, 0}));
    EXPECT_EQ(FindMargin(Picture(9, 9, {{4, 4}}), 0, 9, 2).size(), 12u); // 3, 5, and 3 a row, and the tips
    EXPECT_TRUE(FindMargin(Picture(9, 9, {{4, 4}}), 0, 9, 0).empty());
    EXPECT_TRUE(FindMargin(Picture(9, 9, {}), 0, 9, 128).empty());
}

/// The nearest by looking at all.
std::vector<MarginPixel> Slowly(const CoveredRows& rows, int height, int margin)
{
    std::vector<MarginPixel> found;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < rows.fWidth; ++x) {
            int nearest = margin * margin + 1;
            MarginPixel pixel{x, y, -1, -1};
            for (int fromY = 0; fromY < height; ++fromY)
                for (int fromX = 0; fromX < rows.fWidth; ++fromX) {
                    const int squared = (x - fromX) * (x - fromX) + (y - fromY) * (y - fromY);
                    if (rows.fIsCovered[static_cast<size_t>(fromY * rows.fWidth + fromX)] == 0
                        || squared >= nearest)
                        continue;
                    nearest = squared;
                    pixel.fFromX = fromX;
                    pixel.fFromY = fromY;
                }
            if (pixel.fFromX >= 0 && nearest > 0)
                found.push_back(pixel);
        }
    return found;
}

TEST(MarginTest, BandsComeOutAsTheWhole)
{
    constexpr int kWidth = 60;
    constexpr int kHeight = 70;
    std::mt19937 random(3);
    for (const int margin : {1, 7, 16, 128}) {
        std::vector<std::pair<int, int>> covered;
        for (unsigned i = 0; i < 40; ++i)
            covered.emplace_back(random() % kWidth, random() % kHeight);
        const CoveredRows whole = Picture(kWidth, kHeight, covered);
        const std::vector<MarginPixel> expected = Slowly(whole, kHeight, margin);
        EXPECT_EQ(FindMargin(whole, 0, kHeight, margin), expected) << margin;
        for (const int rowsOfBand : {8, 32}) {
            std::vector<MarginPixel> banded;
            for (int top = 0; top < kHeight; top += rowsOfBand) {
                const int bottom = std::min(top + rowsOfBand, kHeight);
                const int first = std::max(top - margin, 0);
                const int end = std::min(bottom + margin, kHeight);
                const CoveredRows some{kWidth, first,
                    {whole.fIsCovered.begin() + first * kWidth, whole.fIsCovered.begin() + end * kWidth}};
                const std::vector<MarginPixel> found = FindMargin(some, top, bottom, margin);
                banded.insert(banded.end(), found.begin(), found.end());
            }
            EXPECT_EQ(banded, expected) << margin << ' ' << rowsOfBand;
        }
    }
}

} // namespace
