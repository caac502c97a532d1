#include "shaders/mapping/Location.h"
#include "tests/support/ShaderTest.h"

namespace {

constexpr GUID kLocationID = {0xD959106B, 0x78CD, 0x48E4, {0x94, 0x75, 0x29, 0x49, 0x03, 0x92, 0xEA, 0x46}};
constexpr int32_t kOther = 0; // of any code the other meaning

class LocationTest : public ShaderTest {
protected:
    MadeShader<LocationParams> fLocation{kLocationID};

    float ShadeAt(TVector3 point)
    {
        (fLocation.Record().fSpace == kOther ? fIn.fPointLocal : fIn.fPointGlobal) = point;
        float value = 9;
        EXPECT_EQ(fLocation->ShadeValue(value, fFullArea, fIn), 1.0f);
        return value;
    }
};

TEST_F(LocationTest, RampsBetweenItsEdges)
{
    constexpr float kSignalling = std::numeric_limits<float>::signaling_NaN();
    const struct {
        float a, b, x, falling, rising;
    } kRows[] = {
        {6, 2, 3, 0.75f, 0.25f}, // the edges come in any order
        {2, 6, 2, 1, 0},
        {2, 6, 6, 0, 1},
        {2, 6, 9, 0, 1},
        {2, 6, kNaN, 1, 1},
        {0, 0, 0, 1, 1}, // equal ends
        {0, 0, 0.01f, 0, 1},
        {0, 0, -0.01f, 1, 0},
        {kNaN, 6, 7, 0, 1}, // a NaN edge is the other one
        {6, kNaN, 5, 1, 0},
        {-kInfinity, 6, 9, 1, 1}, // an endless ramp has no place for its samples
        {kSignalling, 6, 7, 0, 1},
        {6, kSignalling, 5, 1, 0},
    };
    for (const auto& [a, b, x, falling, rising] : kRows)
        for (const int32_t direction : {Code("GRTR"), kOther}) {
            fLocation.Record().fAxes[1] = {a, b, true, direction};
            fLocation.Changed();
            EXPECT_EQ(ShadeAt({0, x, 0}), direction == kOther ? rising : falling) << x;
        }
}

TEST_F(LocationTest, CombinesTheEnabledAxes)
{
    for (const int axes : {3, 2, 0}) { // the smallest with "ORMD", else the last but for one at 1
        for (int i = 0; i < 3; ++i)
            fLocation.Record().fAxes[i] = {0, 1, i < axes, kOther}; // a ramp with the coordinate's own value
        fLocation.Changed();
        fLocation.Record().fSpace = axes == 2 ? kOther : Code("GLBL");
        fLocation.Record().fCombine = Code("ORMD");
        EXPECT_EQ(ShadeAt({0.5f, 0.25f, 0.75f}), axes == 0 ? 1.0f : 0.25f);
        fLocation.Record().fCombine = kOther;
        EXPECT_EQ(ShadeAt({0.5f, 0.25f, 0.75f}), axes == 0 ? 1.0f : axes == 2 ? 0.25f : 0.75f);
        EXPECT_EQ(ShadeAt({0.25f, 1, 0.75f}), 1.0f);
    }
}

TEST_F(LocationTest, ASubShaderDisturbsTheRamps)
{
    fLocation.Record().fAxes[0] = {0, 8, true, kOther};
    fLocation.Record().fDisturbPercent = 25;
    const auto plugged = FakeColor({0, 1, 0, 1}, kOutputColor | kOutputValue);
    Plug(fLocation.Record().fSubShader, plugged);
    fLocation.Changed();
    EXPECT_EQ(ShadeAt({1, 0, 0}), 0.125f);
    fLocation.Record().fUseSubShader = true;
    EXPECT_FLOAT_EQ(ShadeAt({1, 0, 0}), 0.125f + 0.1475f); // the luminance of a colour first
    EXPECT_EQ(plugged->fLastFullArea, &fFullArea);

    plugged->fKinds = kOutputValue;
    fLocation.Changed();
    const struct {
        float number, percent;
    } kSamples[] = {{1, 25}, {0.0625f, 1.5625f}, {2, 39.0625f}, {2, 976.5625f}, {0.5f, 12.5f}};
    for (const auto& [number, percent] : kSamples) { // above 1 repeats the last percent, scaled once more
        plugged->fValue = number;
        EXPECT_EQ(ShadeAt({1, 0, 0}), std::min(0.125f + percent / 100, 1.0f));
    }
    plugged->fValue = std::nextafter(1.0f, 2.0f); // above 1 is above 1
    EXPECT_EQ(ShadeAt({1, 0, 0}), 1.0f);
    plugged->fKinds = kOutputSurface;
    fLocation.Changed();
    EXPECT_EQ(ShadeAt({1, 0, 0}), 0.125f);
    fLocation.Record().fSubShader = nullptr;
    fLocation.Changed();
    EXPECT_EQ(ShadeAt({1, 0, 0}), 0.125f);
}

TEST_F(LocationTest, TheLastDisturbanceIsThatOfTheLastDisturbedSample)
{
    LocationParams& record = fLocation.Record();
    record.fAxes[0] = {0, 8, true, kOther};
    record.fDisturbPercent = 2;
    const auto plugged = FakeValue(0.5f);
    Plug(record.fSubShader, plugged);
    fLocation.Changed();
    const auto shade = [&](bool use, float number) {
        record.fUseSubShader = use;
        plugged->fValue = number;
        return ShadeAt({1, 0, 0});
    };
    EXPECT_EQ(shade(true, 2), 0.125f); // none before
    EXPECT_FLOAT_EQ(shade(true, 0.5f), 0.125f + 0.01f);
    EXPECT_EQ(shade(false, 0.25f), 0.125f); // undisturbed, it counts for nothing
    EXPECT_FLOAT_EQ(shade(true, 2), 0.125f + 0.02f);
    record.fSubShader = nullptr;
    fLocation.Changed();
    EXPECT_EQ(shade(true, 0), 0.125f); // a missing shader disturbs by 0, and that counts
    Plug(record.fSubShader, plugged);
    fLocation.Changed();
    EXPECT_EQ(shade(true, 2), 0.125f);
}

TEST_F(LocationTest, ADisturbanceMovesEveryAxisUpByItsOwnWidth)
{
    LocationParams& record = fLocation.Record();
    const auto plugged = FakeValue(0.5f);
    Plug(record.fSubShader, plugged);
    record.fUseSubShader = true;
    record.fDisturbPercent = 50; // a quarter of the width
    for (int axis = 0; axis < 3; ++axis)
        for (const int32_t direction : {Code("GRTR"), kOther}) {
            for (int i = 0; i < 3; ++i)
                record.fAxes[i] = {-1, i == axis ? 3.0f : 99.0f, i == axis, direction};
            fLocation.Changed();
            plugged->fOn = [axis](ShadingIn& in) { in.fPointGlobal[static_cast<uint32_t>(axis)] += 1; };
            const float height = 0.25f + 0.25f + 0.25f; // of the point that the shader left, moved
            EXPECT_EQ(ShadeAt({0, 0, 0}), direction == kOther ? height : 1 - height) << axis;
        }
}

TEST_F(LocationTest, AChangeFixesTheRampsAndTheRestCountsAtOnce)
{
    LocationParams& record = fLocation.Record();
    const auto plugged = FakeValue(0.5f);
    Plug(record.fSubShader, plugged);
    record.fAxes[0] = record.fAxes[1] = {0, 8, true, kOther};
    fLocation.Changed();
    record.fAxes[0] = {2, 3, true, Code("GRTR")};
    record.fAxes[1].fEnabled = false;
    record.fAxes[2].fEnabled = true;
    fIn.fPointLocal = {2, 7, 0};
    EXPECT_EQ(ShadeAt({2, 4, 0}), 0.25f);
    record.fCombine = kOther;
    EXPECT_EQ(ShadeAt({2, 4, 0}), 0.5f);
    record.fSpace = kOther;
    EXPECT_EQ(ShadeAt({2, 7, 0}), 0.875f);
    record.fUseSubShader = true;
    record.fDisturbPercent = 25;
    EXPECT_EQ(ShadeAt({2, 4, 0}), 0.625f);
}

} // namespace
