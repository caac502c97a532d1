#include "shaders/mapping/Key.h"
#include "tests/support/ShaderTest.h"

namespace {

constexpr GUID kKeyID = {0x379752D6, 0xC5EB, 0x4173, {0xB3, 0xE4, 0xFF, 0x72, 0x77, 0x69, 0x48, 0x3A}};

class KeyTest : public ShaderTest {
protected:
    MadeShader<KeyParams> fKey{kKeyID};

    TMCColorRGBA Shade(TMCColorRGBA sub, float coverage = 1.0f)
    {
        const auto plugged = FakeColor(sub);
        Plug(fKey.Record().fSubShader, plugged);
        EXPECT_EQ(fKey.Changed(), MC_S_OK);
        TMCColorRGBA color{9, 9, 9, 9};
        EXPECT_EQ(fKey->ShadeColor(color, fFullArea, fIn), coverage);
        fKey.Record().fSubShader = nullptr;
        return color;
    }
};

TEST_F(KeyTest, MasksTheKeyColourBlackAndKeepsTheSubShadersAlpha)
{
    EXPECT_THAT(Shade({0, 1, 0, 0.25f}), IsColor(0, 0, 0, 0.25f));
    EXPECT_THAT(Shade({0, 0.5f, 0, 0.25f}), IsColor(1, 1, 1, 0.25f));
}

TEST_F(KeyTest, SetsAlphaOutsideMaskMode)
{
    fKey.Record().fMode = Code("keym"); // any code but the tested one
    EXPECT_THAT(Shade({0, 1, 0, 0.25f}), IsColor(0, 1, 0, 0));
    EXPECT_THAT(Shade({0.5f, 1, 0, 0.25f}), IsColor(0.5f, 1, 0, 1));
}

TEST_F(KeyTest, BothEndsOfTheBoxBelongToItAndNaNDoesNot)
{
    const float low = static_cast<float>(-1 / 100.0);
    const float high = static_cast<float>(1 / 100.0 + 1.0f);
    EXPECT_EQ(Shade({low, high, low, 1}).fRed, 0);
    EXPECT_EQ(Shade({std::nextafter(low, -1.0f), 1, 0, 1}).fRed, 1);
    EXPECT_EQ(Shade({0, std::nextafter(high, 2.0f), 0, 1}).fRed, 1);
    EXPECT_EQ(Shade({0, 1, kNaN, 1}).fRed, 1);
}

TEST_F(KeyTest, BoundsAreSummedInDouble)
{
    fKey.Record().fRedRange = fKey.Record().fGreenRange = fKey.Record().fBlueRange = {-95, -95};
    fKey.Record().fKeyColor = {0.04f, 0.04f, 0.04f, 0};
    const float only = static_cast<float>(-95.0f / 100.0 + 0.04f);
    ASSERT_NE(only, -95.0f / 100.0f + 0.04f);
    EXPECT_EQ(Shade({only, only, only, 1}).fRed, 0);
    EXPECT_EQ(Shade({only, std::nextafter(only, 1.0f), only, 1}).fRed, 1);
}

TEST_F(KeyTest, AChangeFixesTheBoxAndTheModeCountsAtOnce)
{
    const auto plugged = FakeColor({0.25f, 0.5f, 0.75f, 0.125f});
    KeyParams& record = fKey.Record();
    Plug(record.fSubShader, plugged);
    record.fKeyColor = {0.25f, 0.5f, 0.75f, 9}; // the alpha takes no part
    fKey.Changed();
    record.fRedRange = record.fGreenRange = record.fBlueRange = {50, 60};
    record.fKeyColor = {1, 1, 1, 1};
    TMCColorRGBA color{};
    fKey->ShadeColor(color, fFullArea, fIn);
    EXPECT_THAT(color, IsColor(0, 0, 0, 0.125f));
    record.fMode = 0;
    fKey->ShadeColor(color, fFullArea, fIn);
    EXPECT_THAT(color, IsColor(0.25f, 0.5f, 0.75f, 0));
    plugged->fSilent = true; // leaves the colour of the sample before
    color = {};
    fKey->ShadeColor(color, fFullArea, fIn);
    EXPECT_THAT(color, IsColor(0.25f, 0.5f, 0.75f, 0));
    for (const uint32_t channel : {0u, 1u, 2u}) { // each axis has its own box
        plugged->fSilent = false;
        plugged->fColor = {0.25f, 0.5f, 0.75f, 0.125f};
        plugged->fColor[channel] += 0.02f;
        fKey->ShadeColor(color, fFullArea, fIn);
        EXPECT_EQ(color.fAlpha, 1) << channel;
    }
}

TEST_F(KeyTest, AnInvertedRangeHoldsNothing)
{
    fKey.Record().fBlueRange = {5, -5};
    EXPECT_EQ(Shade({0, 1, 0, 1}).fRed, 1);
}

TEST_F(KeyTest, WithoutASubShaderTheAnswerIsOpaqueRedAndNoCoverage)
{
    TMCColorRGBA color{};
    for (const bool changed : {false, true}) { // also before the first change
        if (changed) {
            EXPECT_EQ(fKey.Changed(), MC_S_OK);
        }
        EXPECT_EQ(fKey->ShadeColor(color, fFullArea, fIn), 0.0f);
        EXPECT_THAT(color, IsColor(1, 0, 0, 1));
        EXPECT_FALSE(fFullArea);
    }
}

TEST_F(KeyTest, AsksAnyShaderWithAKindForItsColourAndPassesTheCallersFlag)
{
    const auto plugged = FakeColor({0, 1, 0, 1}, kOutputValue);
    Plug(fKey.Record().fSubShader, plugged);
    fKey.Changed();
    TMCColorRGBA color{};
    fKey->ShadeColor(color, fFullArea, fIn);
    EXPECT_EQ(plugged->fColorCalls, 1);
    EXPECT_EQ(plugged->fLastFullArea, &fFullArea);
    EXPECT_TRUE(fFullArea); // as the sub-shader left it

    plugged->fKinds = 0;
    fKey.Changed();
    EXPECT_EQ(fKey->ShadeColor(color, fFullArea, fIn), 0.0f);
    EXPECT_EQ(plugged->fColorCalls, 1);
}

TEST_F(KeyTest, DropsAnEmptiedSlot)
{
    Shade({0, 1, 0, 1}); // leaves the slot empty
    fKey.Changed();
    TMCColorRGBA color{};
    EXPECT_EQ(fKey->ShadeColor(color, fFullArea, fIn), 0.0f);
}

} // namespace
