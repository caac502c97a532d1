#include "shaders/scene/Proximity.h"
#include "tests/shaders/scene/SceneTest.h"

namespace {

constexpr GUID kProximityID = {0xCCE54E2B, 0x7650, 0x4059, {0x81, 0x9F, 0x78, 0x6B, 0x24, 0x9F, 0x25, 0xBC}};

class ProximityTest : public SceneTest {
protected:
    FakeElement& fTarget = AddAt(fScene, "Target", {3, 4, 0});
    MadeShader<ProximityParams> fProximity{kProximityID};
    ProximityParams& fRecord = fProximity.Record();

    ProximityTest() { fRecord.fTargetName = "Target"; }
    float Value(float coverage = 1)
    {
        EXPECT_EQ(fProximity.Changed(), MC_S_OK);
        return ValueOf(fProximity, fFullArea, fIn, coverage);
    }
};

TEST_F(ProximityTest, TheRampEndsAtTheLimitAndTheValueIsClamped)
{
    // An offset of 7 makes a distance of 5 negative.
    const float cases[][4] = {{5, 0, 0, 0.5f}, {10, 0, 0, 0}, {9, 2, 0, 0.5f}, {7.9f, 2, 0, 1}, {10, 2, 0, 0},
        {11, 2, 0, 0}, {5, 0, 7, 1}, {5, 0, 2.5f, 0.75f}, {5, kNaN, 0, kNaN}};
    for (const auto& [distance, falloff, offset, value] : cases) {
        fTarget.fTransform.fTranslation = {0, 0, distance};
        fRecord.fFalloff = falloff;
        fRecord.fOffset = offset;
        EXPECT_THAT(Value(), testing::NanSensitiveFloatEq(value)) << distance << ", " << falloff;
    }
    fRecord = {};
    fRecord.fTargetName = "Target";
    fRecord.fMaxDistance = fRecord.fOffset = 5; // no distance is left
    EXPECT_EQ(Value(), 1);
    fTarget.fTransform.fTranslation = {};
    fRecord.fMaxDistance = fRecord.fOffset = 0; // nor a limit
    EXPECT_TRUE(std::isnan(Value()));
    fRecord.fMaxDistance = -10;
    fRecord.fOffset = 12;
    EXPECT_EQ(Value(), 0); // from below
}

TEST_F(ProximityTest, AChangeFixesTheNameAndTheRampsStartAndTheRestCountsAtOnce)
{
    fRecord.fFalloff = 2;
    Value();
    const auto value = [this] { return ValueOf(fProximity, fFullArea, fIn); };
    fRecord.fTargetName = "";
    fTarget.fTransform.fTranslation = {0, 0, 9};
    fRecord.fFalloff = 4;
    EXPECT_EQ(value(), 0.75f); // still from 8
    fRecord.fFalloff = 0.5f;
    EXPECT_EQ(value(), 0); // clamped
    fRecord.fFalloff = 0;
    fRecord.fMaxDistance = 12;
    EXPECT_EQ(value(), 0.25f);
    fRecord.fOffset = -3;
    EXPECT_EQ(value(), 0);
    fRecord.fAxisZ = false;
    EXPECT_EQ(value(), 0.75f);
    fRecord.fReference = Code("Opt2");
    EXPECT_FLOAT_EQ(value(), 1 - 4 / 12.0f);
    fShaded.fName = "Target";
    fRecord.fSingleObject = false;
    EXPECT_EQ(value(), 0.75f);
    EXPECT_FALSE(fFullArea);
}

TEST_F(ProximityTest, AxesAndReferencePointsCount)
{
    const std::tuple<int32_t, bool, bool, bool, float> cases[]
        = {{Code("Opt1"), true, true, true, std::sqrt(61.0f)}, {Code("Opt1"), false, true, false, 4},
            {Code("Opt3"), false, true, false, 2}, {Code("Opt3"), true, false, false, 2},
            {Code("Opt2"), false, true, false, 4}, {Code("Opt2"), false, false, true, 6},
            {Code("Opt1"), true, true, false, 5}, {Code("Opt1"), false, false, false, 0}};
    fTarget.fTransform.fTranslation[2] = 6;
    for (const auto& [reference, x, y, z, distance] : cases) {
        fRecord.fReference = reference;
        fRecord.fAxisX = x;
        fRecord.fAxisY = y;
        fRecord.fAxisZ = z;
        EXPECT_FLOAT_EQ(Value(), 1 - distance / 10);
    }
    EXPECT_EQ(TakeReports(), Reports{});
}

TEST_F(ProximityTest, WithoutANameOrAShadedElementThereIsNoCoverage)
{
    FakeElement noElement;
    noElement.fIsElement = false;
    for (IMCUnknown* const instance : {static_cast<IMCUnknown*>(nullptr), AsInstance(noElement)}) {
        fIn.fInstance = instance;
        EXPECT_EQ(Value(0), 0);
        EXPECT_EQ(TakeReports(), Reports{"shadingIn.fInstance"});
    }
    fRecord.fTargetName = "";
    EXPECT_EQ(Value(0), 0);
    EXPECT_EQ(TakeReports(), Reports{});
}

TEST_F(ProximityTest, AMissingTargetTouchesAndAnEmptyGroupIsFarAway)
{
    fRecord.fTargetName = "target";
    fRecord.fMaxDistance = 2.0e7f;
    EXPECT_EQ(Value(), 1);
    EXPECT_EQ(TakeReports(), Reports{"objecttree"});
    fRecord.fSingleObject = false;
    EXPECT_EQ(Value(), 0.5f);
    fRecord.fTargetName = "Target";
    fScene.fHasRoot = false;
    EXPECT_EQ(Value(), 0.5f);
    fShaded.fScene = nullptr;
    EXPECT_EQ(Value(), 0.5f);
    EXPECT_EQ(TakeReports(), Reports{});
    fRecord.fSingleObject = true;
    EXPECT_EQ(Value(), 1);
    EXPECT_EQ(TakeReports(), Reports{"scene"});
}

TEST_F(ProximityTest, AsksTheHostInOrder)
{
    const std::string shaded = "Shaded.ITreeElement Shaded.GetScene Shaded.GetGlobalTransform "
                               "Shaded.GetNameScratch Shaded.GetHotPoint Shaded.GetTreeTransform "
                               "Shaded.GetParent ";
    Value();
    EXPECT_EQ(fScene.TakeCalls(), shaded + "GetTreeByName(Target) Target.GetGlobalTransform ");
    fRecord.fSingleObject = false;
    Value();
    EXPECT_EQ(fScene.TakeCalls(),
        shaded
            + "GetRootGroup Root.ITreeElement Root.GetName Root.GetFirstChild Shaded.GetName "
              "Shaded.GetFirstChild Shaded.GetNextSibling Target.GetName Target.GetGlobalTransform "
              "Target.GetFirstChild Target.GetNextSibling Target.GetParent ");
}

TEST_F(ProximityTest, AGroupIsEveryNameThatBeginsWithTheText)
{
    AddAt(fScene, "target", {0, 0, 1});
    AddAt(fScene, "Targe", {0, 0, 1});
    FakeElement& deep = fScene.Add("Target of the target", &fTarget);
    deep.fTransform.fTranslation = {0, 0, 2};
    fRecord.fSingleObject = false;
    EXPECT_FLOAT_EQ(Value(), 0.8f);
    deep.fTransform.fTranslation = {0, 0, kNaN}; // never nearer
    EXPECT_FLOAT_EQ(Value(), 0.5f);
    fScene.fRoot->fTransform.fTranslation = {0, 0, 4};
    for (const size_t length : {255, 256, 1023}) {
        fScene.fRoot->fName = "Target" + std::string(length - 6, '.');
        EXPECT_FLOAT_EQ(Value(), 0.6f);
        EXPECT_EQ(TakeReports(), Reports{}); // a name that long has room
    }
    fScene.fRoot->fName += '.';
    EXPECT_FLOAT_EQ(Value(), 0.6f);
    EXPECT_THAT(TakeReports(), testing::SizeIs(1));
    fShaded.fName = "Target itself";
    fRecord.fReference = Code("Opt2");
    EXPECT_EQ(Value(), 1);
}

TEST_F(ProximityTest, TheSubShaderShiftsTheDistanceByLessTheLargerTheLimit)
{
    fRecord.fUseShader = true;
    fRecord.fShaderStrength = 20;
    EXPECT_FLOAT_EQ(Value(), 0.5f); // nothing plugged in
    // A value above 1 repeats the last sample's.
    const std::tuple<uint32_t, float, float> cases[] = {{kOutputValue, 1.2f, 0}, {kOutputSurface, 0, 0.5f},
        {kOutputColor | kOutputValue, 0, 0.5f}, {kOutputValue, 0.25f, 0.25f}, {kOutputValue, 1.2f, 0.25f},
        {kOutputValue, -1, -1}, {kOutputVector, 0, 0}, {kOutputValue, 2, 0}};
    for (const auto& [kinds, value, shift] : cases) {
        const auto plugged = FakeColor({0.5f, 0.5f, 0.5f, 1}, kinds);
        plugged->fValue = value;
        Plug(fRecord.fSubShader, plugged);
        EXPECT_FLOAT_EQ(Value(), 1 - (5 + 20 * shift / 10) / 10) << value;
        EXPECT_EQ(plugged->fLastFullArea, kinds == kOutputVector ? nullptr : &fFullArea);
        fRecord.fSubShader = nullptr;
    }
}

} // namespace
