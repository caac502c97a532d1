#include "host/shading/Plots.h"
#include "host/pictures/Chart.h"
#include "tests/support/ShaderTest.h"
#include <numeric>

namespace {

using namespace fernwick;

TEST(PlotsTest, ReflectanceOfGlassByPolarisation)
{
    const ReflectanceCurves glass = MeasureReflectance(TestedLibrary(), 2);
    ASSERT_EQ(glass.fEven.size(), 181u);
    const size_t brewster = 113; // atan 1.517 is 56.6 degrees
    EXPECT_NEAR(glass.fP[brewster], 0, 1e-4);
    EXPECT_GT(glass.fS[brewster], 0.15f);
    EXPECT_NEAR(glass.fS[0], 0.0422, 1e-4);
    EXPECT_GT(glass.fP[179], 0.8f) << "at 89.5 degrees";
    for (size_t i = 0; i < glass.fEven.size(); ++i)
        EXPECT_NEAR(glass.fEven[i], std::midpoint(glass.fS[i], glass.fP[i]), 1e-6);
    EXPECT_GT(MeasureReflectance(TestedLibrary(), 9).fS[0], 0.89f);
}

TEST(PlotsTest, ColoursFollowTheWavelengthAndAreEncoded)
{
    const MeasuredWavelengths measured = MeasureWavelengths(TestedLibrary());
    ASSERT_EQ(measured.fPublished.size(), 401u);
    const auto published = [&](size_t nanometres) { return measured.fPublished[nanometres - 380].fColor; };
    EXPECT_EQ(measured.fPublished.back().fAt, 780);
    EXPECT_EQ(published(450).fGreen, 0);
    EXPECT_GT(published(450).fBlue, published(450).fRed);
    EXPECT_GT(published(520).fGreen, 0.8f);
    EXPECT_TRUE(published(640).fRed > 0.8f && published(640).fGreen == 0);
    const TMCColorRGB grey = measured.fShaded.back().fColor;
    EXPECT_NEAR(grey.fRed, 0.7354, 2e-3) << "one half, encoded, without hue";
    EXPECT_NEAR(grey.fRed, grey.fBlue, 0.01);
    EXPECT_GT(measured.fShaded[190].fColor.fRed, measured.fShaded[190].fColor.fBlue + 0.5f);
}

TEST(PlotsTest, IlluminantsAreChosenOrTyped)
{
    const auto chosen = MeasureChosenIlluminants(TestedLibrary());
    const auto typed = MeasureTypedIlluminants(TestedLibrary());
    ASSERT_TRUE(chosen.size() == 14 && chosen.back().fAt == 9300);
    ASSERT_TRUE(typed.size() == 127 && typed.back().fAt == 9300);
    for (const auto& colors : {chosen, typed}) {
        EXPECT_GT(colors.front().fColor.fRed, colors.front().fColor.fBlue + 0.5f);
        EXPECT_GT(colors.back().fColor.fBlue, colors.back().fColor.fRed);
    }
    EXPECT_GT(chosen[7].fColor.fGreen, 0.99f);
    EXPECT_LT(typed[70].fColor.fGreen, 0.93f) << "6500 K without daylight";
}

TEST(ChartTest, PlacesAndCutsOffWhatItDraws)
{
    constexpr ChartArea area = {20, 30, 100, 50};
    const ChartFrame frame = {area, {"", 0, 10, 10}, {"", 0, 1, 1}};
    const ChartPoint level[] = {{0, 0.8}, {1e4, 0.8}};
    const ChartSwatch thirds[]
        = {{0, 10 / 3.0, {0, 0, 1}}, {10 / 3.0, 20 / 3.0, {0, 1, 0}}, {20 / 3.0, 10, {}}};
    Chart curve(160, 100);
    curve.Curve(frame, {{1, 0, 0}}, level);
    Chart strip(160, 100);
    strip.Strip(area, frame.fAcross, "", thirds);
    const Picture line = curve.Finish();
    const Picture bar = strip.Finish();
    const auto at = [](const Picture& picture, int x, int y) {
        const TMCColorRGBA& pixel = picture.At(x, y);
        return std::array{pixel.fRed, pixel.fGreen, pixel.fBlue};
    };
    using Pixel = std::array<float, 3>;
    constexpr Pixel red = {1, 0, 0}, green = {0, 1, 0}, blue = {0, 0, 1}, paper = {1, 1, 1};
    EXPECT_TRUE(at(line, 70, 39) == red && at(line, 70, 40) == red);
    EXPECT_TRUE(at(line, 70, 42) == paper && at(line, 122, 40) == paper && at(line, 19, 40) == paper);
    EXPECT_TRUE(at(bar, 20, 30) == blue && at(bar, 54, 79) == green && at(bar, 119, 50) == Pixel{});
    EXPECT_TRUE(at(bar, 54, 29) == paper && at(bar, 54, 80) == paper && at(bar, 120, 50) == paper);
    for (int x = 20; x < 120; ++x)
        EXPECT_NE(at(bar, x, 50), paper) << "no gap at " << x;
}

} // namespace
