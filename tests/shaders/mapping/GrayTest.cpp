#include "shaders/mapping/Gray.h"
#include "tests/support/ShaderTest.h"

namespace {

constexpr GUID kGrayID = {0xB30CC03F, 0x243F, 0x4F88, {0x9E, 0x16, 0x8B, 0x05, 0x71, 0x77, 0x1D, 0xBC}};
constexpr int32_t kSaturation = 0;

class GrayTest : public ShaderTest {
protected:
    MadeShader<GrayParams> fGray{kGrayID};

    TMCColorRGBA Shade(MCCountedPtr<FakeShader> plugged, float coverage = 1)
    {
        Plug(fGray.Record().fSubShader, plugged);
        fGray.Changed();
        TMCColorRGBA color{9, 9, 9, 0.125f};
        EXPECT_EQ(fGray->ShadeColor(color, fFullArea, fIn), coverage);
        fGray.Record().fSubShader = nullptr;
        return color;
    }
};

TEST_F(GrayTest, TakesColourBeforeValueAndCoversByMode)
{
    const auto both = FakeColor({1, 0.5f, 0.25f, 0.75f}, kOutputColor | kOutputValue);
    EXPECT_THAT(Shade(both), IsColor(0.6225f, 0.6225f, 0.6225f, 0.75f));
    EXPECT_EQ(both->fLastFullArea, &fFullArea);
    EXPECT_THAT(Shade(FakeValue(2.5f)), IsColor(2.5f, 2.5f, 2.5f, 0.125f));
    EXPECT_THAT(Shade(FakeValue(2.5f, kOutputVector)), IsColor(0, 0, 0, 0.125f));
    EXPECT_THAT(Shade({}, 0), IsColor(0, 0, 0, 0.125f));

    fGray.Record().fMode = kSaturation;
    EXPECT_THAT(Shade(FakeValue(2.5f)), IsColor(0, 0, 0, 0.125f));
    EXPECT_THAT(Shade({}, 1), IsColor(0, 0, 0, 0.125f));
    EXPECT_FALSE(fFullArea);
}

TEST_F(GrayTest, ShiftsSaturation)
{
    const struct {
        float shift, color[3], expected[3];
    } kRows[] = {
        {0, {0.75f, 0.25f, 0.25000003f}, {0.8f, 0.2f, 0.2f}}, // a hue rounded to 360
        {-60, {1, 0.6f, 0.6f}, {0.9f, 0.7f, 0.7f}},           // the light half
        {-200, {0.6f, 0.2f, 0.2f}, {0.4f, 0.4f, 0.4f}},
        {0, {0.4f, 0.4f, 0.4f}, {0.4f, 0.4f, 0.4f}},
        {20, {0.4f, 0.4f, 0.4f}, {0.32f, 0.32f, 0.32f}}, // a gray that gains comes out darker
        {20, {0.6f, kNaN, 0.2f}, {0.6f, kNaN, 0.2f}},
        {20, {kNaN, 0.6f, 0.2f}, {0.12f, 0.12f, 0.12f}}, // the others' saturation, and no hue
        {20, {0.6f, 0.2f, kNaN}, {0.12f, 0.12f, 0.12f}},
    };
    for (const auto& [shift, color, expected] : kRows) {
        fGray.Record() = {shift, 10, 20, -30, kSaturation, {}, {}};
        EXPECT_THAT(Shade(FakeColor({color[0], color[1], color[2], 0.5f})),
            IsColor(expected[0], expected[1], expected[2], 0.5f));
    }
}

TEST_F(GrayTest, AMiddleLightnessCountsAsTheDarkHalf)
{
    // Where both formulas of the saturation, and then of the brighter end, differ by a rounding.
    fGray.Record() = {0, 0, 0, 0, kSaturation, {}, {}};
    const float largest = 0.9114f, smallest = 1 - largest;
    ASSERT_EQ((largest + smallest) / 2, 0.5f);
    const float saturation = (largest - smallest) / (largest + smallest);
    EXPECT_EQ(Shade(FakeColor({largest, smallest, smallest, 1})).fRed, 0.5f * (1.0f + saturation));
    fGray.Record().fSaturationShift = 0.1f;
    EXPECT_EQ(Shade(FakeColor({0.5f, 0.5f, 0.5f, 1})).fRed, 1.0f - 0.5f * (1.0f + 0.1f / 100.0f));
}

TEST_F(GrayTest, AChangeFixesTheHuesShiftsAndSwitchesAndTheRestCountsAtOnce)
{
    const auto plugged = FakeColor({0.6f, 0.4f, 0.2f, 0.5f}, kOutputColor | kOutputSurface);
    plugged->fSurface.fColor = {0.6f, 0.4f, 0.2f, 0.5f};
    GrayParams& record = fGray.Record();
    record = {0, 0, 0, 0, kSaturation, {}, {}};
    Plug(record.fSubShader, plugged);
    fGray.Changed();
    const auto expect = [this](float red, float green, float blue) {
        TMCColorRGBA color{};
        fGray->ShadeColor(color, fFullArea, fIn);
        EXPECT_THAT(color, IsColor(red, green, blue, 0.5f));
    };
    record.fRedShift = record.fGreenShift = record.fBlueShift = 40;
    for (TMCBool& on : record.fColorSwitches)
        on = true;
    expect(0.6f, 0.4f, 0.2f);
    record.fSaturationShift = -25;
    expect(0.5f, 0.4f, 0.3f);
    ShadingOut result;
    fGray->ShadeSurface(result, fIn);
    EXPECT_THAT(result.fColor, IsColor(0.6f, 0.4f, 0.2f, 0.5f));
    record.fMode = Code("GRSC");
    expect(0.438f, 0.438f, 0.438f);
}

TEST_F(GrayTest, EachPrimarysShiftHoldsNearItsHueAndFades)
{
    fGray.Record() = {0, 10, 20, -30, kSaturation, {}, {}};
    for (float hue = 0; hue < 360; hue += 0.25f) {
        const auto near = [hue](float primary) {
            return std::clamp(2 - std::fabs(std::remainder(hue - primary, 360.0f)) / 60, 0.0f, 1.0f);
        };
        const float red = near(0) - 0.5f, green = near(120) - 0.5f, blue = near(240) - 0.5f;
        const TMCColorRGBA color
            = Shade(FakeColor({0.5f + red / 2, 0.5f + green / 2, 0.5f + blue / 2, 0.5f}));
        const float saturation = 0.5f + 0.1f * near(0) + 0.2f * near(120) - 0.3f * near(240);
        EXPECT_NEAR(color.fRed, 0.5f + saturation * red, 1e-5f) << hue;
        EXPECT_NEAR(color.fGreen, 0.5f + saturation * green, 1e-5f) << hue;
        EXPECT_NEAR(color.fBlue, 0.5f + saturation * blue, 1e-5f) << hue;
    }
}

TEST_F(GrayTest, FiltersTheSwitchedColoursOfASurface)
{
    const auto plugged = fernwick::MakeCounted<FakeShader>(kOutputSurface);
    ShadingOut& surface = plugged->fSurface;
    plugged->fOn = [](ShadingIn& in) { in.fChannelMask = 5; };
    constexpr float kColor[] = {0.6f, 0.4f, 0.2f}; // of each, and what becomes of it
    constexpr float kGray[] = {0.438f, 0.438f, 0.438f};
    constexpr float kShifted[] = {0.5f, 0.4f, 0.3f};
    surface.fColor = {kColor[0], kColor[1], kColor[2], 0.125f};
    surface.fSecondColor = surface.fThirdColor = surface.fFourthColor = {kColor[0], kColor[1], kColor[2]};
    for (const auto& [mode, filtered] : {std::pair{Code("GRSC"), &kGray}, {kSaturation, &kShifted}})
        for (int on = 0; on < 4; ++on) {
            fGray.Record() = {-25, 0, 0, 0, mode, {}, {on == 0, on == 1, on == 2, on == 3}};
            Shade(plugged); // plugs it
            ShadingOut result;
            EXPECT_EQ(fGray->ShadeSurface(result, fIn), 1);
            EXPECT_EQ(fIn.fChannelMask, 2047u); // all, whatever the sub-shader left
            EXPECT_EQ(result.fColor.fAlpha, 0.125f);
            const float* const kRed[] = {&result.fColor.fRed, &result.fThirdColor.fRed,
                &result.fSecondColor.fRed, &result.fFourthColor.fRed};
            for (int i = 0; i < 4; ++i)
                for (int channel = 0; channel < 3; ++channel)
                    EXPECT_FLOAT_EQ(kRed[i][channel], i == on ? (*filtered)[channel] : kColor[channel]);
        }
    plugged->fOn = {};
    plugged->fKinds = kOutputColor;
    Shade(plugged);
    ShadingOut result;
    fIn.fChannelMask = 5;
    EXPECT_EQ(fGray->ShadeSurface(result, fIn), 1);
    EXPECT_THAT(result.fColor, IsColor(0, 0, 0, 1)); // as it was
    EXPECT_EQ(fIn.fChannelMask, 5u);
}

TEST_F(GrayTest, WhatASilentShaderLeavesIsOfTheSampleBefore)
{
    const auto color = FakeColor({1, 0.5f, 0.25f, 0.75f}, kOutputColor | kOutputSurface);
    const auto value = FakeValue(2.5f);
    const auto shade = [&](const MCCountedPtr<FakeShader>& plugged, bool silent) {
        plugged->fSilent = silent;
        return Shade(plugged);
    };
    EXPECT_THAT(shade(color, true), IsColor(0, 0, 0, 0));
    EXPECT_THAT(shade(color, false), IsColor(0.6225f, 0.6225f, 0.6225f, 0.75f));
    EXPECT_THAT(shade(color, true), IsColor(0.6225f, 0.6225f, 0.6225f, 0.75f));
    EXPECT_THAT(shade(value, true), IsColor(0.6225f, 0.6225f, 0.6225f, 0.125f));
    EXPECT_THAT(shade(value, false), IsColor(2.5f, 2.5f, 2.5f, 0.125f));
    EXPECT_THAT(shade(value, true), IsColor(2.5f, 2.5f, 2.5f, 0.125f));

    // The last switched colour of a surface is one too, with the alpha of the first.
    color->fSurface.fColor = {0, 1, 0, 0.5f};
    color->fSurface.fSecondColor = {0, 0, 1};
    fGray.Record().fColorSwitches[0] = fGray.Record().fColorSwitches[2] = true;
    shade(color, true);
    ShadingOut result;
    fGray->ShadeSurface(result, fIn);
    EXPECT_THAT(Shade(color), IsColor(0.11f, 0.11f, 0.11f, 0.5f));
    color->fSurface.fThirdColor = {1, 0, 0}; // comes before the second
    color->fSurface.fSecondColor = {0, 1, 0};
    fGray.Record().fColorSwitches[1] = true;
    Shade(color);
    fGray->ShadeSurface(result, fIn);
    EXPECT_THAT(Shade(color), IsColor(0.59f, 0.59f, 0.59f, 0.5f));
    fGray.Record().fColorSwitches[2] = false;
    Shade(color);
    fGray->ShadeSurface(result, fIn);
    EXPECT_THAT(Shade(color), IsColor(0.3f, 0.3f, 0.3f, 0.5f));
    fGray.Record().fColorSwitches[2] = true;
    fGray.Record().fMode = kSaturation; // leaves the first sample's there
    Shade(color);
    fGray->ShadeSurface(result, fIn);
    EXPECT_THAT(Shade(color), IsColor(1, 0, 0, 0.5f));
}

} // namespace
