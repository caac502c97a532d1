#include "optics/ColorSystems.h"
#include "optics/SpectralColor.h"
#include "optics/SpectralTables.h"
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace SpectralTables;
using ColorSystems::sRGBSystem;

TEST(SpectralTables, StandOnThePublishedRows)
{
    EXPECT_EQ(XBar.front(), 0.0026899f);
    EXPECT_EQ(YBar.front(), 0.0002f);
    EXPECT_EQ(ZBar.front(), 0.01226f);
    EXPECT_EQ(XBar.back(), 1.6377e-6f);
    EXPECT_EQ(YBar.back(), 6.3564e-7f);
    EXPECT_EQ(ZBar.back(), 1.5476e-10f);
    EXPECT_EQ(std::max_element(YBar.begin(), YBar.end()) - YBar.begin(), 201);
    EXPECT_EQ(std::max_element(D65Array.begin(), D65Array.end()) - D65Array.begin(), 92);
    EXPECT_NEAR(D65Array[0], 0.489846, 5e-7);
    EXPECT_NEAR(D65Array[92], 1.15442, 5e-6);
    EXPECT_NEAR(D65Array[201], 0.999846, 5e-7);
    EXPECT_NEAR(D65Array[511], 0.577089, 5e-7);
    // A slipped digit would stand out of the smooth curves.
    for (const auto* table : {&XBar, &YBar, &ZBar})
        for (size_t i = 2; i + 2 < table->size(); ++i) {
            const auto& t = *table;
            EXPECT_NEAR(t[i], (4 * (t[i - 1] + t[i + 1]) - t[i - 2] - t[i + 2]) / 6, 1.2e-3f) << i;
        }
}

TEST(SpectralWeight, IsTheRatioOfPlanckCurvesTimesD65ForPresets)
{
    const auto planck = [](double lambda, double T) { return 1 / std::expm1(1.438776877e7 / (lambda * T)); };
    for (const float T : {3000.0f, 6500.0f, 9300.0f})
        for (const float lambda : {380.0f, 400.0f, 555.0f, 700.3f, 825.0f}) {
            const double ratio
                = planck(lambda, T) / planck(lambda, 6500) / (planck(555, T) / planck(555, 6500));
            const float bare = SpectralWeight(lambda, {T, true});
            EXPECT_NEAR(bare / ratio, 1, 2e-4) << T << " " << lambda;
            const double place = (lambda - 380) * 511 / 445;
            const size_t i = static_cast<size_t>(place), j = std::min<size_t>(i + 1, 511);
            const double d65 = D65Array[i] + (D65Array[j] - D65Array[i]) * (place - static_cast<double>(i));
            EXPECT_NEAR(SpectralWeight(lambda, {T, false}), bare * d65, 1e-5);
        }
}

TEST(MonochromaticStimulus, KeepsToTheEndsOfTheTables)
{
    const Illuminant daylight = {6500, false};
    const auto below = MonochromaticStimulus(380, daylight);
    const auto above = MonochromaticStimulus(825, daylight);
    EXPECT_NEAR(below.XYZ[1], 0.0002 * 0.489846, 1e-8);
    EXPECT_NEAR(above.XYZ[0], 1.6377e-6 * 0.577089, 1e-11);
    EXPECT_NEAR(below.xyz[0] + below.xyz[1] + below.xyz[2], 1, 1e-6);
    for (const float lambda : {379.99f, 350.0f, 200.0f}) {
        EXPECT_NEAR(MonochromaticStimulus(lambda, daylight).xyz[0], below.xyz[0], 1e-6);
        EXPECT_NEAR(MonochromaticStimulus(825 + lambda, daylight).xyz[0], above.xyz[0], 1e-6);
    }
    for (const float lambda : {-1e30f, 0.0f, 1e30f, std::nanf("")})
        MonochromaticStimulus(lambda, {std::nanf(""), false}); // must not leave the tables
}

TEST(SystemWithIlluminant, ReplacesTheChromaticityOfTheWhite)
{
    const struct {
        Illuminant illuminant;
        double x, y;
    } whites[] = {{{6500, false}, 0.3160, 0.3351}, {{3000, false}, 0.4371, 0.4129},
        {{9300, false}, 0.2876, 0.3044}, {{6500, true}, 0.3349, 0.3364}};
    for (const auto& white : whites) {
        const ColorSystem system = SystemWithIlluminant(sRGBSystem, white.illuminant);
        EXPECT_NEAR(system.xyYWhite[0], white.x, 1e-4);
        EXPECT_NEAR(system.xyYWhite[1], white.y, 1e-4);
        EXPECT_EQ(system.xyYWhite[2], 1);
        EXPECT_EQ(system.xyYRed, sRGBSystem.xyYRed);
        EXPECT_EQ(system.fGamma, sRGBSystem.fGamma);

        Float3 sum = {0, 0, 0};
        for (float lambda = 380; lambda <= 825; lambda = static_cast<float>(lambda + 0.1))
            sum = sum + MonochromaticStimulus(lambda, white.illuminant).XYZ;
        EXPECT_EQ(system.xyYWhite[0], sum[0] / (sum[0] + sum[1] + sum[2])) << "the same bits as wave by wave";
    }
}

class WavelengthColorTest : public testing::Test {
protected:
    WavelengthColors Color(float lambda, int32_t depth = 7)
    {
        const auto [x, y, Y] = fSource.xyYWhite;
        return WavelengthColor(fSource, sRGBSystem, lambda, fDaylight, x, y, 0.9f, depth, fSearch);
    }
    /// What the shift in L*a*b* makes of a colour on the surface.
    Float3 Shifted(const Float3& shiftedLab) const
    {
        const auto [wx, wy, wY] = fSource.xyYWhite;
        const auto [X, Y, Z] = LabToXYZ(shiftedLab, {wx / wy, 1, (1 - wx - wy) / wy});
        return XyYToRGB(sRGBSystem, sRGBSystem, X / (X + Y + Z), Y / (X + Y + Z), Y);
    }

    const Illuminant fDaylight = {6500, false};
    const ColorSystem fSource = SystemWithIlluminant(sRGBSystem, fDaylight);
    GamutSearch fSearch;
};

TEST_F(WavelengthColorTest, LooksLikeASpectrum)
{
    float previous = 290;
    for (float lambda = 420; lambda < 630; lambda += 10) {
        const float hue = RGBToHSL(Color(lambda).fRGB).fHue * 360;
        EXPECT_LT(hue, previous) << "from violet to red at " << lambda;
        previous = hue;
    }
    EXPECT_NEAR(RGBToHSL(Color(465).fRGB).fHue * 360, 240, 12);
    EXPECT_NEAR(RGBToHSL(Color(530).fRGB).fHue * 360, 130, 20);
    EXPECT_NEAR(previous, 0, 8);

    const Stimulus green = MonochromaticStimulus(530, fDaylight);
    const Float3 adapted = AdaptToWhite(fSource, sRGBSystem, green.xyz[0], green.xyz[1], green.XYZ[1]);
    const Float3 color = Color(530).fRGB;
    fSearch = {};
    EXPECT_EQ(color, FaceColor(ProjectToGamut(sRGBSystem, adapted, 0.9f, 0, 0, 7, fSearch)))
        << "found at once";
}

TEST(WavelengthColor, TriesASecondTimeAHundredthNanometreLower)
{
    // Under these dim lights the line of the wavelength misses the cube, and that of the one below meets it.
    for (const auto& [temperature, lambda] :
        {std::pair{1500.0f, 552.2481f}, {1700.0f, 557.3575f}, {1900.0f, 564.2989f}}) {
        const Illuminant illuminant = {temperature, true};
        const ColorSystem source = SystemWithIlluminant(sRGBSystem, illuminant);
        const auto color = [&](float wavelength, GamutSearch& search) {
            const auto [x, y, Y] = source.xyYWhite;
            return WavelengthColor(source, sRGBSystem, wavelength, illuminant, x, y, 0.9f, 7, search).fRGB;
        };
        const auto project = [&](float wavelength, GamutSearch& search) {
            const Stimulus stimulus = MonochromaticStimulus(wavelength, illuminant);
            return FaceColor(ProjectToGamut(sRGBSystem,
                AdaptToWhite(source, sRGBSystem, stimulus.xyz[0], stimulus.xyz[1], stimulus.XYZ[1]), 0.9f, 0,
                0, 7, search));
        };
        GamutSearch missed, met, search;
        project(lambda, missed);
        EXPECT_FALSE(missed.fFound) << temperature;
        const Float3 lower = project(static_cast<float>(lambda - 0.01), met);
        EXPECT_TRUE(met.fFound) << temperature;
        EXPECT_EQ(color(lambda, search), lower) << temperature;
        EXPECT_TRUE(search.fFound && search.fCellCount == met.fCellCount) << "counted anew";
    }
}

TEST_F(WavelengthColorTest, ShiftsLightColoursAndFadesTheShiftOut)
{
    int kinds[3] = {};
    for (float lambda = 381; lambda < 780; lambda += 3.7f) {
        fSearch.fCellCount = 1000000;
        const WavelengthColors color = Color(lambda);
        ASSERT_TRUE(fSearch.fFound) << lambda;
        EXPECT_LT(fSearch.fCellCount, 10000) << "counted anew";
        EXPECT_GE(*std::min_element(color.fRGB.begin(), color.fRGB.end()), 0);
        EXPECT_LE(*std::max_element(color.fRGB.begin(), color.fRGB.end()), 1);

        const float L = color.fShadeLab[0];
        const float weight = std::clamp((L - 30) / 15, 0.0f, 1.0f);
        const Float3 surface = XYZToLab(XyYToXYZ(sRGBSystem.xyYRed) * color.fRGB[0]
                + XyYToXYZ(sRGBSystem.xyYGreen) * color.fRGB[1]
                + XyYToXYZ(sRGBSystem.xyYBlue) * color.fRGB[2],
            XyYToXYZ(sRGBSystem.xyYWhite));
        EXPECT_NEAR(color.fShadeLab[1] - surface[1], L < 30 ? 0 : -4.98, 0.4) << lambda;
        EXPECT_NEAR(color.fShadeLab[2] - surface[2], L < 30 ? 0 : -38.84, 0.4) << lambda;
        const Float3 shifted = weight > 0 ? Shifted(color.fShadeLab) : color.fRGB;
        for (size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(color.fShadeRGB[i], weight * shifted[i] + (1 - weight) * color.fRGB[i], 1e-5)
                << lambda;
        ++kinds[weight == 0 ? 0 : weight < 1 ? 1 : 2];
    }
    EXPECT_TRUE(kinds[0] > 0 && kinds[1] > 0 && kinds[2] > 0);
}

TEST_F(WavelengthColorTest, AMissPublishesBlackAndShadesWithTheShiftedBlack)
{
    const WavelengthColors color = Color(600, 0); // an undivided face is never hit
    EXPECT_FALSE(fSearch.fFound);
    EXPECT_EQ(color.fRGB, (Float3{0, 0, 0}));
    EXPECT_EQ(color.fShadeLab, (Float3{0, -4.98f, -38.84f}));
    EXPECT_TRUE(std::isnan(color.fShadeRGB[0])) << "no luminance, so no chromaticity";
    EXPECT_EQ(HSLToRGB({RGBToHSL(color.fShadeRGB).fHue, 0.3f, 0}), (Float3{0.3f, 0.3f, 0.3f}));
}

} // namespace
