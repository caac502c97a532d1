#include "shaders/scene/Lit.h"
#include "tests/shaders/scene/SceneTest.h"

namespace {

constexpr GUID kLitID = {0x64D2039A, 0x97CC, 0x4C82, {0x95, 0x9A, 0xEE, 0xFB, 0x58, 0xBF, 0x90, 0x6A}};
constexpr float kRightAngle = 1.57079637f;

/// A lamp four units above a sample that faces it. The range of angles takes all and makes the ramp 1.
class LitTest : public SceneTest {
protected:
    FakeElement& fLamp = fScene.Add("Lamp");
    MadeShader<LitParams> fLit{kLitID};
    LitParams& fRecord = fLit.Record();
    LightState& fState = fLamp.fLightState;

    LitTest()
    {
        fLamp.fIsLight = true;
        fLamp.fLightTransform.fTranslation = {0, 0, 4};
        fState.fKind = 1;
        fRecord.fLightName = "Lamp";
        fRecord.fAngleRange = {0, kInfinity};
        fIn.fNormalGlobal = {0, 0, 1};
    }
    float Value() { return ValueOf(fLit, fFullArea, fIn); }
    TMCColorRGBA Color() { return ColorOf(fLit, fFullArea, fIn); }
};

TEST_F(LitTest, WithoutALightTheAmountIsZeroAndEachMissIsReported)
{
    FakeElement noElement;
    noElement.fIsElement = false;
    const struct {
        const char* name;
        IMCUnknown* instance;
        Reports reports;
    } cases[] = {
        {"", AsInstance(fShaded), {"temp_tree", "temp_tree"}},
        {"Shaded", AsInstance(fShaded), {}}, // an element that is no light
        {"Lamp", nullptr, {"shadingIn.fInstance", "scene"}},
        {"Lamp", AsInstance(noElement), {"scene"}},
    };
    for (const auto& miss : cases) {
        fRecord.fLightName = miss.name;
        fIn.fInstance = miss.instance;
        EXPECT_EQ(Value(), 0);
        EXPECT_EQ(TakeReports(), miss.reports) << miss.name;
        fRecord.fInvert = true;
        EXPECT_THAT(Color(), IsColor(1, 1, 1, 1));
        fRecord.fUseLightColor = true;
        EXPECT_THAT(Color(), IsColor(0, 0, 0, 1));
        fRecord.fInvert = fRecord.fUseLightColor = false;
        TakeReports();
    }
}

TEST_F(LitTest, AsksTheHostInOrder)
{
    Value();
    EXPECT_EQ(fScene.TakeCalls(),
        "Shaded.ITreeElement Shaded.GetScene GetTreeByName(Lamp) Shaded.GetGlobalTransform "
        "Shaded.GetHotPoint "
        "Shaded.GetTreeTransform Lamp.ILight Lamp.GetLightTransform Lamp.GetDirection Lamp.GetLightState "
        "Lamp.brit ");
}

TEST_F(LitTest, TheRampIsNotClampedAndTheLowerBoundIsTestedOnlyOnDemand)
{
    fRecord.fAngleRange = {20, 160};
    EXPECT_FLOAT_EQ(Value(), 1 + 20.0f / 140);
    fRecord.fUseMinAngle = true;
    EXPECT_EQ(Value(), 0);
    fRecord.fAngleRange = {0, 1}; // both ends belong to the range
    EXPECT_EQ(Value(), 1);
    fRecord.fAngleRange = {-1, 0};
    fRecord.fUseLightColor = true;
    fLamp.fBrightness = 0; // 0 / 0 tells that the light counted
    EXPECT_TRUE(std::isnan(Color().fRed));
}

TEST_F(LitTest, FoldsTheAngleByAQuarterTurn)
{
    fRecord.fAngleRange = {0, 4};
    fRecord.fFoldAngle = true;
    EXPECT_FLOAT_EQ(Value(), 1 - kRightAngle / 4);
    fIn.fNormalGlobal = {2, 0, 0};
    EXPECT_FLOAT_EQ(Value(), 1 - kRightAngle / 4);
    fIn.fNormalGlobal = {0, 0, -1};
    EXPECT_NEAR(Value(), 1, 1e-6);
    fIn.fNormalGlobal = {0, 0, 0}; // NaN passes no test
    EXPECT_EQ(Value(), 0);
}

TEST_F(LitTest, RangeAndConeCountByTheKindOfLight)
{
    const float tilt = 40 * 0.0174532925f;
    fLamp.fLightTransform.fMatrix[0][2] = -std::sin(tilt); // the axis is the negated third column
    fLamp.fLightTransform.fMatrix[2][2] = std::cos(tilt);
    const struct {
        int32_t kind;
        float near, far, outer, inner, amount;
    } cases[] = {{2, 4, 4, 0, 0, 1}, {0, 2, 10, 39, 20, 0.75f}, {2, 0, 4, 0, 0, 0}, {2, 5, 3, 0, 0, 0},
        {1, 0, 0, 39, 20, 1}, {3, 2, 10, 60, 20, 0.375f}, {3, 4, 8, 60, 41, 1}, {3, 4, 8, 39, 20, 0},
        {3, 4, 8, 39, 39, 0}, {3, 4, 8, 41, 41, 1}};
    for (const auto& [kind, near, far, outer, inner, amount] : cases) {
        fState = {kind, {}, {}, {}, outer, inner, near, far};
        EXPECT_NEAR(Value(), amount, 1e-5) << kind << ": " << near << ", " << outer;
    }
    fLamp.fLightTransform.fMatrix[0][2] = -1;
    fLamp.fLightTransform.fMatrix[2][2] = 0;
    fState = {3, {}, {}, {}, 90, 90, 4, 8};
    EXPECT_EQ(Value(), 0); // exactly on the edge of the cone
}

TEST_F(LitTest, GivesTheLightsColourPerBrightnessNeverInverted)
{
    fState.fKind = 2;
    fState.fFarRange = 8;
    fState.fLightColor = {2, 4, 6};
    fLamp.fBrightness = 2;
    fRecord.fUseLightColor = true;
    fRecord.fInvert = true;
    EXPECT_EQ(Value(), 0);
    EXPECT_TRUE(fFullArea); // the value leaves the flag alone
    EXPECT_EQ(fLit.Changed(), MC_S_OK);
    EXPECT_THAT(Color(), IsColor(0.5f, 1, 1.5f, 1));
    EXPECT_FALSE(fFullArea);
    fRecord.fUseLightColor = false;
    EXPECT_THAT(Color(), IsColor(0.5f, 0.5f, 0.5f, 1));
}

TEST_F(LitTest, MeasuresFromTheReferencePointAndKeepsNothingOfTheScene)
{
    fState.fKind = 2;
    fState.fFarRange = 8;
    fLamp.fLightTransform.fTranslation = {1, 2, 4};
    const std::pair<int32_t, TVector3> cases[]
        = {{Code("Opt1"), {1, 2, 4}}, {Code("Opt2"), {0, 2, 4}}, {7, {0, 2, 4}}, {Code("Opt3"), {0, 0, 4}}};
    for (const auto& [reference, way] : cases) {
        fRecord.fReference = reference;
        EXPECT_FLOAT_EQ(Value(), 1 - static_cast<float>(Length(way)) / 8);
    }
    fLamp.fName = "Renamed";
    EXPECT_EQ(Value(), 0);
}

} // namespace
