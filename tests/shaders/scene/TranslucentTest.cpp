#include "shaders/scene/Translucent.h"
#include "tests/shaders/scene/SceneTest.h"

namespace {

constexpr GUID kTranslucentID
    = {0x999C3DA8, 0x7456, 0x4FB4, {0xA4, 0x81, 0x27, 0x00, 0xFC, 0xFE, 0x74, 0x9D}};

constexpr float kRightAngle = 1.57079637f;

/// The light straight above the sample, the viewer turned away from it by an angle.
class TranslucentTest : public SceneTest {
protected:
    FakeElement& fLight = AddAt(fScene, "Light", {0, 0, 5});
    FakeElement& fCamera = fScene.Add("Eye");
    MadeShader<TranslucentParams> fTranslucent{kTranslucentID};
    TranslucentParams& fRecord = fTranslucent.Record();

    TranslucentTest()
    {
        fRecord.fCameraName = "Eye";
        fRecord.fLightName = "Light";
        fRecord.fAngleRange = {0.5f, 2.5f};
    }
    float LevelAt(double angle)
    {
        fCamera.fTransform.fTranslation
            = {static_cast<float>(3 * std::sin(angle)), 0, static_cast<float>(3 * std::cos(angle))};
        return Level();
    }
    float Level()
    {
        EXPECT_EQ(fTranslucent.Changed(), MC_S_OK);
        const TMCColorRGBA color = ColorOf(fTranslucent, fFullArea, fIn);
        EXPECT_THAT(color, IsColor(color.fRed, color.fRed, color.fRed, 0.25f));
        return color.fRed;
    }
};

TEST_F(TranslucentTest, MapsTheAngleThroughTheRange)
{
    const float cases[][2] = {{0, 0}, {0.4f, 0}, {1.5f, 0.5f}, {2.6f, 1}, {3.14159265f, 1}};
    for (const auto& [angle, level] : cases)
        for (const bool invert : {false, true}) {
            fRecord.fInvert = invert;
            EXPECT_NEAR(LevelAt(angle), invert ? 1 - level : level, 1e-6) << angle;
        }
    fRecord.fAngleRange = {0, 0}; // the start decides first
    EXPECT_EQ(LevelAt(0), 1);
}

TEST_F(TranslucentTest, TheCurveLeavesZeroToOneUnclamped)
{
    fRecord.fFalloffMode = Code("EXPO");
    EXPECT_NEAR(LevelAt(1.5), 37.625, 1e-4);
    fRecord.fCurveHandles = {0.25f, 0.5f};
    EXPECT_NEAR(LevelAt(1.5), 3 * 0.125 * 0.25 + 3 * 0.125 * 0.5 + 0.125, 1e-5);
}

TEST_F(TranslucentTest, AChangeFixesTheCurveAndTheRestCountsAtOnce)
{
    EXPECT_EQ(fTranslucent.Changed(), MC_S_OK);
    fRecord.fCurveHandles = {0.25f, 0.5f};
    fRecord.fFalloffMode = Code("EXPO");
    const auto level = [this] { return ColorOf(fTranslucent, fFullArea, fIn).fRed; };
    fCamera.fTransform.fTranslation = {3, 0, 0}; // at a right angle
    fRecord.fAngleRange = {0, kRightAngle * 2};
    EXPECT_NEAR(level(), 37.625, 1e-4);
    EXPECT_FALSE(fFullArea);
    fRecord.fInvert = true;
    EXPECT_NEAR(level(), -36.625, 1e-4);
    fRecord.fFalloffMode = Code("LINE");
    EXPECT_NEAR(level(), 0.5, 1e-6);
    fRecord.fReference = Code("Opt2");
    EXPECT_EQ(level(), 1 - AngleBetween({2, 0, 0}, {-1, 0, 5}) / (kRightAngle * 2));
    fRecord.fLightName = "Eye";
    EXPECT_EQ(level(), 1); // no angle
    fRecord.fCameraName = "Light";
    fRecord.fLightName = "Light";
    EXPECT_EQ(level(), 1);
}

TEST_F(TranslucentTest, MissingPartsCountAsAngleZeroAndAreReported)
{
    const struct {
        const char* light;
        const char* camera;
        IMCUnknown* instance;
        Reports reports;
    } cases[] = {
        {"", "Eye", AsInstance(fShaded), {"temp_tree", "temp_tree"}},
        {"Light", "", AsInstance(fShaded), {"temp_tree"}},
        {"", "", AsInstance(fShaded), {"temp_tree", "temp_tree", "temp_tree"}},
        {"Light", "Eye", nullptr, {"shadingIn.fInstance", "scene"}},
    };
    EXPECT_EQ(LevelAt(3), 1); // what an earlier sample found counts for nothing
    for (const auto& miss : cases) {
        fRecord.fLightName = miss.light;
        fRecord.fCameraName = miss.camera;
        fIn.fInstance = miss.instance;
        EXPECT_EQ(Level(), 0);
        EXPECT_EQ(TakeReports(), miss.reports);
    }
}

TEST_F(TranslucentTest, AsksTheHostInOrder)
{
    Level();
    EXPECT_EQ(fScene.TakeCalls(),
        "Shaded.ITreeElement Shaded.GetScene GetTreeByName(Light) Shaded.GetGlobalTransform "
        "Shaded.GetHotPoint Shaded.GetTreeTransform Light.GetGlobalTransform GetTreeByName(Eye) "
        "Eye.GetGlobalTransform ");
}

TEST_F(TranslucentTest, SeesBothFromTheReferencePoint)
{
    fRecord.fAngleRange = {0, 4};
    fLight.fTransform.fTranslation = {1, 2, 5};
    fCamera.fTransform.fTranslation = {5, 2, 0};
    const std::tuple<int32_t, TVector3, TVector3> cases[] = {{Code("Opt1"), {1, 2, 5}, {5, 2, 0}},
        {Code("Opt2"), {0, 2, 5}, {4, 2, 0}}, {Code("Opt3"), {0, 0, 5}, {4, 0, 0}}};
    for (const auto& [reference, light, camera] : cases) {
        fRecord.fReference = reference;
        EXPECT_NEAR(Level(), AngleBetween(light, camera) / 4, 1e-6);
    }
    fLight.fTransform.fTranslation = {1, 2, 0}; // no way to it: NaN passes both tests
    EXPECT_TRUE(std::isnan(Level()));
}

} // namespace
