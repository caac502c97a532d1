#include "shaders/patterns/Spoke.h"
#include "tests/support/ShaderTest.h"

namespace {

constexpr GUID kSpokeID = {0x48C59C53, 0x7AFF, 0x452D, {0x9F, 0x9D, 0xE1, 0xFE, 0xBE, 0xD0, 0x6F, 0xDB}};

class SpokeTest : public ShaderTest {
protected:
    MadeShader<SpokeParams> fSpoke{kSpokeID};
    SpokeParams& fParams = fSpoke.Record();

    float UnchangedAtOffset(float deltaU, float deltaV)
    {
        fFullArea = true;
        fIn.fUV = {fParams.fCenterU + deltaU, fParams.fCenterV + deltaV};
        float value = 9;
        EXPECT_EQ(fSpoke->ShadeValue(value, fFullArea, fIn), 1.0f);
        EXPECT_FALSE(fFullArea);
        return value;
    }
    float AtOffset(float deltaU, float deltaV)
    {
        EXPECT_EQ(fSpoke.Changed(), MC_S_OK);
        return UnchangedAtOffset(deltaU, deltaV);
    }
    float At(double degrees, double radius)
    {
        const double angle = degrees / 57.29577951308232 - 3.141592653589793;
        return AtOffset(
            static_cast<float>(radius * std::sin(angle)), static_cast<float>(radius * std::cos(angle)));
    }
};

TEST_F(SpokeTest, MeasuresTheAngleFromTheAxisOfV)
{
    EXPECT_EQ(AtOffset(0, 0.25f), 0);
    EXPECT_EQ(At(45, 0.25), 1);
    fParams.fCount = 1; // one spoke, centred at 180 degrees
    EXPECT_EQ(AtOffset(0, 0.25f), 1);
    fParams.fRotation = -90;
    EXPECT_EQ(AtOffset(0.25f, 0), 1);
}

TEST_F(SpokeTest, FallsToZeroOverTheSoftShareAndFadesAtBothEnds)
{
    fParams.fIntensity = 2;
    EXPECT_EQ(At(45 + 11.9, 0.25), 2);
    EXPECT_NEAR(At(45 - 13.5, 0.25), 1, 1e-4); // half of the soft fifth of 15 degrees
    EXPECT_NEAR(At(45, 0.06), 1, 1e-4);
    EXPECT_NEAR(At(45, 0.75), 1, 1e-4);
    EXPECT_NEAR(At(45, 1.4), -1.6, 1e-4); // goes on below zero to the corners of the square
    EXPECT_EQ(At(45, 1.415), 0);
    fParams.fInnerFade = 2.02f; // the inner fade goes before the outer
    EXPECT_NEAR(At(45, 1.02), 1, 1e-4);
    fParams.fInnerFade = 0;
    fParams.fTaper = 40;
    EXPECT_NEAR(At(45 + 9, 0.25), 1, 1e-4); // 20 of 30 degrees are left
    fParams.fTaper = 200;
    EXPECT_EQ(At(45, 0.25), 0);
}

TEST_F(SpokeTest, TheLowerEdgeIsOutsideAndTheUpperInside)
{
    fParams.fCount = 1;
    fParams.fWidth = 180;
    fParams.fSoftness = 0;
    EXPECT_EQ(AtOffset(-0.25f, 0), 0);           // 90 degrees
    EXPECT_TRUE(std::isnan(AtOffset(0.25f, 0))); // 270 degrees: a ramp of no width
    fParams.fWidth = 0;
    EXPECT_EQ(AtOffset(0, 0.25f), 0); // a spoke of no width
}

TEST_F(SpokeTest, ParallelSidesMergeNearTheCentre)
{
    fParams.fConstantWidth = true;
    fParams.fSoftness = 1;
    fParams.fWidth = 20;
    fParams.fInnerRadius = 0.005f;
    fParams.fInnerFade = 0.006f;
    EXPECT_NEAR(At(45 + 1, 0.25), 0.5004, 1e-4); // the half width is 2.0016 degrees
    EXPECT_EQ(At(45, 0.01), 0);
    *reinterpret_cast<unsigned char*>(&fParams.fFillCenter) = 2; // any byte but 0 is true
    EXPECT_EQ(At(0, 0.01), 1);
    EXPECT_EQ(At(0, 0.001), 1); // below the inner radius too
    EXPECT_EQ(AtOffset(0, 0), 0);
}

TEST_F(SpokeTest, BothEndsOfTheRadiusAreInside)
{
    fParams.fCenterU = fParams.fCenterV = 0;
    fParams.fCount = 1;
    fParams.fInnerRadius = fParams.fInnerFade = fParams.fOuterFade = fParams.fOuterRadius
        = 0.25f; // no fade, and no 0 / 0
    EXPECT_EQ(AtOffset(0, 0.25f), 1);
    EXPECT_EQ(AtOffset(0, std::nextafter(0.25f, 0.0f)), 0);
    fParams.fOuterRadius = 0.4f;
    fParams.fOuterFade = 0;
    const double end = fParams.fOuterRadius * 1.4142135623730951; // in double, below the float next to it
    const float beyond = static_cast<float>(end);
    EXPECT_EQ(AtOffset(0, beyond), 0);
    EXPECT_LT(AtOffset(0, std::nextafter(beyond, 0.0f)), 0);

    fParams.fConstantWidth = true;
    fParams.fWidth = 20;
    fParams.fIntensity = 2;
    fParams.fInnerRadius = fParams.fInnerFade = 0;
    fParams.fOuterFade = 1;
    const float merging = static_cast<float>(0.0174532925199433); // a sine of exactly 1: still a spoke
    EXPECT_EQ(AtOffset(0, merging), 2);
    EXPECT_EQ(AtOffset(0, std::nextafter(merging, 0.0f)), 0);
    fParams.fFillCenter = true;
    EXPECT_EQ(AtOffset(0, merging / 2), 1); // whatever the intensity
}

TEST_F(SpokeTest, DerivesSectorAndSoftShareAtTheChangeAndReadsTheRestInEachSample)
{
    const float place = 0.1767767f; // 225 degrees, at radius 0.25
    EXPECT_EQ(AtOffset(place, place), 1);
    fParams.fCount = 0;
    fParams.fSoftness = 0.9f;
    EXPECT_EQ(UnchangedAtOffset(place, place), 1);
    EXPECT_EQ(UnchangedAtOffset(0.2f, 0.15f), 1); // 8 of 15 degrees off the centre line: still hard
    fParams.fIntensity = 3;
    const auto with = [this, place](auto field, auto number) {
        const auto old = std::exchange(fParams.*field, number);
        const float value = UnchangedAtOffset(place, place);
        fParams.*field = old;
        return value;
    };
    EXPECT_EQ(with(&SpokeParams::fRotation, 45), 0);
    EXPECT_EQ(with(&SpokeParams::fWidth, 0.0f), 0);
    EXPECT_EQ(with(&SpokeParams::fTaper, 200.0f), 0);
    EXPECT_EQ(with(&SpokeParams::fInnerRadius, 0.3f), 0);
    EXPECT_EQ(with(&SpokeParams::fOuterRadius, 0.1f), 0);
    EXPECT_NEAR(with(&SpokeParams::fInnerFade, 0.48f), 1.5, 0.001);
    EXPECT_NEAR(with(&SpokeParams::fOuterFade, 0.0f), 2.25, 0.001);
    EXPECT_EQ(with(&SpokeParams::fConstantWidth, true), 3);
}

TEST_F(SpokeTest, DrawsNothingWithoutSpokesOrAPlace)
{
    EXPECT_EQ(AtOffset(kNaN, 0.1f), 0);
    fParams.fCount = 0;
    EXPECT_EQ(At(45, 0.25), 0);
}

} // namespace
