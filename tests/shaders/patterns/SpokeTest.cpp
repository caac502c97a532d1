#include "shaders/patterns/Spoke.h"
#include "tests/support/ShaderTest.h"

namespace {

constexpr GUID kSpokeID = {0x48C59C53, 0x7AFF, 0x452D, {0x9F, 0x9D, 0xE1, 0xFE, 0xBE, 0xD0, 0x6F, 0xDB}};

class SpokeTest : public ShaderTest {
protected:
    MadeShader<SpokeParams> fSpoke{kSpokeID};
    SpokeParams& fParams = fSpoke.Record();

    float AtOffset(float deltaU, float deltaV)
    {
        fSpoke.Changed();
        fIn.fUV = {fParams.fCenterU + deltaU, fParams.fCenterV + deltaV};
        float value = 9;
        EXPECT_EQ(fSpoke->ShadeValue(value, fFullArea, fIn), 1.0f);
        EXPECT_FALSE(fFullArea);
        return value;
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

TEST_F(SpokeTest, DrawsNothingWithoutSpokesOrAPlace)
{
    EXPECT_EQ(AtOffset(kNaN, 0.1f), 0);
    fParams.fCount = 0;
    EXPECT_EQ(At(45, 0.25), 0);
}

} // namespace
