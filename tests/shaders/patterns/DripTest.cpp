#include "shaders/patterns/Drip.h"
#include "tests/support/ShaderTest.h"

namespace {

constexpr GUID kDripID = {0xE00678C0, 0xB7D1, 0x4620, {0xB1, 0x8D, 0xF6, 0x64, 0x4E, 0xE6, 0xB2, 0x56}};

class DripTest : public ShaderTest {
protected:
    MadeShader<DripParams> fDrip{kDripID};
    DripParams& fParams = fDrip.Record();

    DripTest() { fParams.fCenterU = fParams.fCenterV = 0; }

    /// Nothing is derived: no change is told.
    float At(float u, float v = 0)
    {
        fFullArea = true;
        fIn.fUV = {u, v};
        float value = 9;
        EXPECT_EQ(fDrip->ShadeValue(value, fFullArea, fIn), 1.0f);
        EXPECT_FALSE(fFullArea);
        return value;
    }
};

TEST_F(DripTest, RipplesBetweenTheEdgesAroundTheBaseLevel)
{
    fParams.fBaseLevel = 0.25f;
    EXPECT_NEAR(At(0.15f, 0.2f), 0.75, 1e-6); // radius 0.25
    EXPECT_NEAR(At(0.2f), 0.25, 1e-6);
    EXPECT_EQ(At(0), 0.25f);
    fParams.fWaves = 3; // a third of the way to the edge the cosine is at -1
    EXPECT_NEAR(At(0.25f + 0.05f / 3), 0.25 - 0.5 * 2 / 3, 1e-5);
    fParams.fRingStart = 0.25f;
    fParams.fRingWidth = 0; // a circle, with 0 / 0 on it
    EXPECT_TRUE(std::isnan(At(0.25f)));
    EXPECT_EQ(At(0.2501f), 0.25f);
}

TEST_F(DripTest, AFlatBandHoldsBothEnds)
{
    fParams.fRippled = false;
    fParams.fRingStart = 0.25f;
    fParams.fRingWidth = 0.5f;
    fParams.fBaseLevel = 0.125f;
    EXPECT_EQ(At(0.25f), 0.625f);
    EXPECT_EQ(At(0.75f), 0.625f);
    EXPECT_EQ(At(std::nextafter(0.75f, 1.0f)), 0.125f);
    fParams.fProportional = true; // ends at 1.5 times the start
    EXPECT_EQ(At(0.375f), 0.625f);
    EXPECT_EQ(At(0.376f), 0.125f);
    fParams.fRippled = true;
    EXPECT_EQ(At(0.3125f), 0.625f);
    fParams.fRippled = false;
    fParams.fRingWidth = 0; // ends at 1.1 times the start
    EXPECT_EQ(At(0.27f), 0.625f);
    EXPECT_EQ(At(0.28f), 0.125f);
    fParams.fAmplitude = -100.125f; // exactly the mark of a miss
    EXPECT_EQ(At(0.25f), 0.125f);
}

TEST_F(DripTest, AnyNumbersAreTakenAsTheyAre)
{
    EXPECT_EQ(fDrip.Changed(), MC_S_OK);
    fParams.fBaseLevel = 0.25f;
    fParams.fRingWidth = -0.1f; // ends before it starts
    for (const float radius : {0.05f, 0.15f, 0.2f, 0.25f})
        EXPECT_EQ(At(radius), 0.25f) << radius;
    fParams.fProportional = true;
    fParams.fRingStart = -0.25f;
    fParams.fRingWidth = -2; // -1 times the start
    EXPECT_NEAR(At(0), 0.75, 1e-6);
    EXPECT_EQ(At(0.3f), 0.25f);
    fParams.fRippled = false;
    EXPECT_EQ(At(kNaN), 0.75f); // neither below the ring nor above it
    fParams.fAmplitude = -300;  // below the mark of a miss
    EXPECT_EQ(At(0), -299.75f);
    fParams.fSecondRing = true;
    fParams.fSecondAmplitude = 2;
    EXPECT_EQ(At(0), -599.75f);
}

TEST_F(DripTest, TheSecondRingReplacesTheFirstWhereItLies)
{
    fParams.fSecondRing = true;
    fParams.fSecondAmplitude = -0.5f; // flipped, but with a positive width
    EXPECT_NEAR(At(0.125f), -0.25, 1e-5);
    EXPECT_NEAR(At(0.25f), 0.5, 1e-6);
    fParams.fSecondStart = 1.125f; // 0.225 to 0.275, in the first ring
    EXPECT_NEAR(At(0.25f), -0.25, 1e-5);
    EXPECT_NEAR(At(0.22f), -0.0618, 1e-4);
}

TEST_F(DripTest, TheCrossIgnoresTheRings)
{
    fParams.fShowCenter = true;
    fParams.fBaseLevel = 0.5f;
    for (const float sign : {1.0f, -1.0f}) {
        EXPECT_EQ(At(sign * 0.19f, 0.019f), 1);
        EXPECT_EQ(At(0.019f, sign * 0.19f), 1);
        EXPECT_EQ(At(0, sign * 0.2f), 0); // a float above the double 0.2
        EXPECT_EQ(At(0, std::nextafter(sign * 0.2f, 0.0f)), 1);
    }
    EXPECT_EQ(At(0.1f, 0.02f), 1); // a float below the double 0.02
    EXPECT_EQ(At(0.1f, std::nextafter(0.02f, 1.0f)), 0);
}

TEST_F(DripTest, PassesTheGlobalNormalOn)
{
    fIn.fNormalGlobal = {1, 2, 3};
    TVector3 vector;
    EXPECT_EQ(fDrip->ShadeVector(vector, fIn), 1.0f);
    EXPECT_EQ(vector, TVector3(1, 2, 3));
}

} // namespace
