#include "optics/ColorSystem.h"
#include "optics/ColorSystems.h"
#include "optics/RobertsonLines.h"
#include "tests/optics/ExpectNear.h"
#include <cmath>

namespace {

using namespace ColorSystems;
using Robertson::rt;
using Robertson::uvt;

TEST(Lab, ADarkGreyKeepsItsYAlone)
{
    // the dark branch is no inverse
    ExpectNear(LabToXYZ({6, 0, 0}, {1, 1, 1}), {0, 162.0f / 24389, 0}, 2e-7f);
    EXPECT_EQ(XyYToXYZ({0.4f, 0, 1}), (Float3{0, 0, 0}));
}

TEST(XyYToRGB, WhiteIsWhiteWhateverItsY)
{
    const auto [x, y, Y] = sRGBSystem.xyYWhite;
    EXPECT_EQ(XyYToRGB(sRGBSystem, sRGBSystem, x, y, Y), (Float3{1, 1, 1}));

    // A white of another Y is another white, though only its chromaticity adapts.
    ColorSystem dim = sRGBSystem;
    dim.xyYWhite[2] = 0.5f;
    ExpectNear(XyYToRGB(sRGBSystem, dim, 0.4f, 0.3f, 0.2f),
        XyYToRGB(sRGBSystem, sRGBSystem, 0.4f, 0.3f, 0.2f), 1e-6f);
}

TEST(ColorSystems, LuminancesOfThePrimariesFitTheirChromaticities)
{
    for (const ColorSystem* system :
        {&AdobeRGB, &sRGBSystem, &NTSCsystem, &SMPTEsystem, &AppleRGB, &TalunSystem}) {
        const auto rgb = [&](const Float3& c) { return XyYToRGB(*system, *system, c[0], c[1], c[2]); };
        ExpectNear(rgb(system->xyYRed), {1, 0, 0}, 1e-3f, system->fName);
        ExpectNear(rgb(system->xyYGreen), {0, 1, 0}, 1e-3f, system->fName);
        ExpectNear(rgb(system->xyYBlue), {0, 0, 1}, 1e-3f, system->fName);
    }
}

TEST(Encode, FollowsTheCurveThatGammaNames)
{
    const auto encode = [](float gamma, float value) {
        ColorSystem system = sRGBSystem;
        system.fGamma = gamma;
        EncodeChannel(system, value);
        return value;
    };
    EXPECT_EQ(encode(1, 0.0031308f), 12.92f * 0.0031308f) << "the edge is straight";
    Float3 rgb = {0.5f, 0.2f, 0.01f};
    EncodeColor(sRGBSystem, rgb[0], rgb[1], rgb[2]);
    ExpectNear(rgb, {0.735357f, 0.484529f, 0.099853f}, 1e-6f);
    EXPECT_LT(encode(1, -0.5f), -6) << "negative light stays on the straight line";
    EXPECT_NEAR(encode(2.2f, 0.5f), 0.729740, 1e-6);
    EXPECT_EQ(encode(2.2f, -0.5f), -encode(2.2f, 0.5f));
    // The Rec. 709 curve falls through to a power of 1/0.
    EXPECT_EQ(encode(0, 0.5f), 0);
    EXPECT_EQ(encode(0, 1.3f), INFINITY);
}

/// The Planckian locus in CIE 1960 u, v after M. Krystek (1985), good to 1e-4 up to 15000 K.
struct Locus {
    double u, v;

    explicit Locus(double t)
        : u((0.860117757 + 1.54118254e-4 * t + 1.28641212e-7 * t * t)
            / (1 + 8.42420235e-4 * t + 7.08145163e-7 * t * t)),
          v((0.317398726 + 4.22806245e-5 * t + 4.20481691e-8 * t * t)
              / (1 - 2.89741816e-5 * t + 1.61456053e-7 * t * t))
    { }
};

TEST(CorrelatedTemperature, FollowsThePlanckianLocus)
{
    float T = 1;
    for (const float expected : {1800.0f, 3000.0f, 4200.0f, 5500.0f, 6500.0f, 7900.0f, 9300.0f, 14000.0f}) {
        const auto [u, v] = Locus(expected);
        const double x = 3 * u / (2 * u - 8 * v + 4), y = 2 * v / (2 * u - 8 * v + 4);
        const Float3 xyz = XyYToXYZ({static_cast<float>(x), static_cast<float>(y), 0.7f});
        EXPECT_EQ(CorrelatedTemperature(xyz[0], xyz[1], xyz[2], T), 0);
        EXPECT_NEAR(T / expected, 1, 3e-3) << expected;
    }
    const struct {
        Float3 xyY;
        double temperature;
    } known[]
        = {{{0.31271f, 0.32902f, 1}, 6504}, {{0.34567f, 0.35850f, 1}, 5003}, {{0.44757f, 0.40745f, 1}, 2856}};
    for (const auto& [xyY, temperature] : known) {
        const Float3 xyz = XyYToXYZ(xyY);
        EXPECT_EQ(CorrelatedTemperature(xyz[0], xyz[1], xyz[2], T), 0);
        EXPECT_NEAR(T, temperature, 4);
    }
    for (int row = 7; row < Robertson::kLines; ++row) { // each line stands at a right angle to the locus
        const Locus at(1 / rt[row]), warmer(1 / (rt[row] + 1e-6)), cooler(1 / (rt[row] - 1e-6));
        EXPECT_NEAR(uvt[row].u, at.u, 1.3e-4) << row;
        EXPECT_NEAR(uvt[row].v, at.v, 1.3e-4) << row;
        EXPECT_NEAR(std::atan(uvt[row].t), std::atan(-(warmer.u - cooler.u) / (warmer.v - cooler.v)), 0.025)
            << row;
    }
    for (int row = 1; row < Robertson::kLines; ++row) { // between two lines
        const float u = (uvt[row - 1].u + uvt[row].u) / 2, v = (uvt[row - 1].v + uvt[row].v) / 2;
        const float X = 1.5f * u / v;
        EXPECT_EQ(CorrelatedTemperature(X, 1, (6 / v - X - 15) / 3, T), 0);
        EXPECT_NEAR((1 / T - rt[row - 1]) / (rt[row] - rt[row - 1]), 0.5, 0.05) << row;
    }
    EXPECT_EQ(CorrelatedTemperature(0.8647973f, 0.7874f, 0.28047067f, T), 0);
    EXPECT_EQ(T, 1 / rt[20]) << "exactly on a line";
    EXPECT_EQ(CorrelatedTemperature(0.445112377f, 0.055583097f, 0.902589858f, T), 0);
    EXPECT_FLOAT_EQ(T, 1 / rt[14]) << "from the other side";

    T = 1234;
    EXPECT_EQ(CorrelatedTemperature(1e-21f, 0, -1, T), -1);
    EXPECT_EQ(CorrelatedTemperature(0.7f, 0.3f, 0.001f, T), -1) << "redder than the last line";
    EXPECT_EQ(CorrelatedTemperature(1.34761298f, 0.9604f, 0.0768033341f, T), -1) << "exactly on it";
    EXPECT_EQ(CorrelatedTemperature(std::nanf(""), 1, 1, T), -1);
    EXPECT_EQ(T, 1234);
}

TEST(HSL, LastLargestChannelDecidesAndGreyHasNoHue)
{
    const struct {
        Float3 rgb;
        ColorHSL hsl;
    } cases[] = {{{1, 0, 0}, {0, 0.5f, 1}}, {{0, 0, 1}, {2 / 3.0f, 0.5f, 1}},
        {{0.5f, 0.25f, 0.375f}, {11 / 12.0f, 0.375f, 1 / 3.0f}},
        {{0.75f, 0.75f, 0.25f}, {1 / 6.0f, 0.5f, 0.5f}},
        {{0.875f, 0.75f, 0.875f}, {5 / 6.0f, 0.8125f, 1 / 3.0f}},
        {{0.625f, 0.75f, 0.5f}, {0.25f, 0.625f, 1 / 3.0f}}};
    for (const auto& [rgb, expected] : cases) {
        const ColorHSL hsl = RGBToHSL(rgb);
        ExpectNear({hsl.fHue, hsl.fLightness, hsl.fSaturation},
            {expected.fHue, expected.fLightness, expected.fSaturation}, 1e-6f);
        ExpectNear(HSLToRGB(hsl), rgb, 1e-6f);
    }
    const ColorHSL grey = RGBToHSL({0.3f, 0.3f, 0.3f});
    EXPECT_TRUE(std::isnan(grey.fHue));
    EXPECT_EQ(grey.fSaturation, 0);
    EXPECT_EQ(HSLToRGB(grey), (Float3{0.3f, 0.3f, 0.3f}));
    ExpectNear(HSLToRGB({grey.fHue, 0.25f, 0.5f}), {0.125f, 0.125f, 0.125f}, 1e-6f, "m1");
}

} // namespace
