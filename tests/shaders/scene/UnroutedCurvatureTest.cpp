#include "frame/TMCException.h"
#include "shaders/scene/Curvature.h"
#include "shaders/scene/SurfaceCurvature.h"
#include "tests/shaders/scene/SceneTest.h"
#include "tests/support/StaticServices.h"

namespace {

/// A surface that is hit, with the derivatives and the shape that a test gives it.
class CurvatureTest : public UnitTest {
protected:
    FakeScene fScene;
    FakeElement& fShaded = AddShaded(fScene);
    FakeElement& fSurface = fScene.Add("Surface");
    MCCountedPtr<Curvature> fShader = Make();
    CurvatureParams& fRecord = RecordOf(fShader);
    ShadingIn fIn;
    bool fFullArea = true;
    bool fHits = true;
    RayHitRecord fFound{0};

    CurvatureTest()
    {
        fSurface.fIsInstance = true;
        fSurface.fOnRay = [this](RayHitParams& params) {
            EXPECT_EQ(params.fHit->fKind, -3);
            EXPECT_EQ(params.fHit->fBlock.fShading.fInstance, static_cast<IInstance*>(&fSurface));
            EXPECT_EQ(params.fRay->fOrigin, TVector3(1, 2, 5));
            EXPECT_EQ(params.fRay->fDirection, TVector3(0, 0, -2));
            EXPECT_EQ(params.fNearLimit, 0);
            EXPECT_EQ(params.fFarLimit, 1.01f);
            *params.fHit = fFound;
            return fHits;
        };
        fRecord.fObjectName = "Shaded";
        fRecord.fSurfaceName = "Surface";
        fIn.fInstance = AsInstance(fShaded);
        fIn.fPointGlobal = {1, 2, 3};
        fIn.fNormalGlobal = {0, 0, 2};
    }
    static MCCountedPtr<Curvature> Make()
    {
        MCCountedPtr<Curvature> made;
        *made.Address() = new Curvature;
        return made;
    }
    static CurvatureParams& RecordOf(const MCCountedPtr<Curvature>& shader)
    {
        return *static_cast<CurvatureParams*>(shader->GetExtensionDataBuffer());
    }
    TMCColorRGBA Color()
    {
        EXPECT_EQ(fShader->ExtensionDataChanged(), MC_S_OK);
        return ColorOf(fShader, fFullArea, fIn);
    }
};

TEST_F(CurvatureTest, ShowsTheGaussianCurvatureInsteadOfTheBands)
{
    const struct {
        float bendU, bendV;
        TVector3 derivU, derivV;
        float red, blue;
    } cases[] = {
        {0, 0, {1, 0, 0}, {0, 1, 0}, 0, 0},
        {-0.5f, -0.8f, {3, 0, 0}, {1, 2, 0}, 0.4f, 0}, // however the surface is parametrised
        {-0.5f, 0.8f, {1, 0, 0}, {0, 1, 0}, 0, 0.4f},
        {2, 2, {1, 0, 0}, {0, 1, 0}, 1, 0},
        {1, 1, {1, 0, 0}, {1, 0, 0}, 0, 0},                           // NaN
        {1.0e20f, 1.0e20f, {1.0e-20f, 0, 0}, {0, 1.0e-20f, 0}, 1, 0}, // infinite
        {1.0e20f, -1.0e20f, {1.0e-20f, 0, 0}, {0, 1.0e-20f, 0}, 0, 1},
    };
    for (const auto& at : cases) {
        fFound.fShapeMatrix[0][0] = at.bendU;
        fFound.fShapeMatrix[1][1] = at.bendV;
        fFound.fBlock.fShading.fDerivU = at.derivU;
        fFound.fBlock.fShading.fDerivV = at.derivV;
        EXPECT_THAT(Color(), IsColor(at.red, 0, at.blue, 0.25f)) << at.bendU << ", " << at.bendV;
    }
    TMCColorRGBA color{9, 9, 9, 7}; // an alpha above 1 stays too
    fShader->ShadeColor(color, fFullArea, fIn);
    EXPECT_THAT(color, IsColor(0, 0, 1, 7));
    fHits = false;
    EXPECT_THAT(Color(), IsColor(0, 1, 0, 0.25f));
    fSurface.fIsInstance = false;
    EXPECT_THAT(Color(), IsColor(0, 1, 0, 0.25f));
    EXPECT_EQ(TakeReports(), Reports{});
}

TEST_F(CurvatureTest, AsksTheHostInOrder)
{
    Color();
    EXPECT_EQ(fScene.TakeCalls(),
        "Shaded.ITreeElement Shaded.GetScene GetTreeByName(Shaded) Shaded.GetGlobalTransform "
        "GetTreeByName(Surface) Surface.IInstance Surface.GetTreeTransform Surface.GetBoundingBox(2, true) "
        "Surface.GetGlobalTransform Surface.CastRay ");
}

TEST_F(CurvatureTest, FinishesAHitBeforeItIsMeasured)
{
    fFound.fHitDistance = 1;
    fFound.fFinishHit = [](RayHitRecord* record) {
        EXPECT_EQ(record->fNeedFinish, 1);
        EXPECT_EQ(record->fHitPoint, TVector3(1, 2, 5 - 2 * static_cast<float>(record->fHitDistance)));
        record->fBlock.fShading.fDerivU = {1, 0, 0};
        record->fBlock.fShading.fDerivV = {0, 1, 0};
        record->fShapeMatrix[0][0] = record->fShapeMatrix[1][1] = 0.5f;
    };
    EXPECT_EQ(Color().fRed, 0.25f);
    fFound.fHitDistance = 0.25;
    EXPECT_EQ(Color().fRed, 0.25f);
    fSurface.fInstanceStatus = 1; // not looked at
    EXPECT_EQ(Color().fRed, 0.25f);
}

TEST_F(CurvatureTest, WithoutASurfaceTheColourStaysAndNothingOfAnEarlierSampleStandsIn)
{
    EXPECT_EQ(Color().fRed, 0);
    fIn.fInstance = nullptr;
    EXPECT_EQ(Color().fRed, 9);
    EXPECT_EQ(TakeReports(), (Reports{"shadingIn.fInstance", "scene"}));
    fIn.fInstance = AsInstance(fShaded);
    fRecord.fObjectName = fRecord.fSurfaceName = "surface";
    EXPECT_EQ(Color().fRed, 9);
    EXPECT_EQ(TakeReports(), Reports{"objecttree"});
}

TEST_F(CurvatureTest, TheRunningAngleAddsUpOverTheSamples)
{
    const auto plugged = FakeValue(1);
    Plug(fRecord.fSubShader, plugged);
    fRecord.fRawAngle = true;
    EXPECT_EQ(Color().fRed, 0); // not driven
    fRecord.fMixStyle = Code("SHMX");
    const float steps[][2] = {{1, 0.5f}, {0.75f, 0.75f}, {1.5f, 1}, {-9, 0}, {kNaN, 0}, {1, 0.5f}};
    for (const auto& [value, angle] : steps) {
        plugged->fValue = value;
        EXPECT_FLOAT_EQ(Color().fRed, angle / 3.14159265f) << value;
    }
    EXPECT_EQ(plugged->fLastFullArea, &fFullArea);
    fRecord.fInvertRaw = true;
    plugged->fKinds = kOutputSurface; // neither colour nor value: back by a half
    EXPECT_EQ(Color().fBlue, 1);
    fRecord.fSubShader = nullptr;
}

TEST_F(CurvatureTest, AChangeConnectsTheShaderAndTheRestCountsAtOnce)
{
    const auto plugged = FakeColor({1, 1, 1, 1}, kOutputColor | kOutputValue);
    plugged->fValue = 9;
    Plug(fRecord.fSubShader, plugged);
    Color();
    const auto grey = [this] { return ColorOf(fShader, fFullArea, fIn).fGreen * 3.14159265f; };
    fFullArea = true;
    fRecord.fSubShader = nullptr;
    fRecord.fMixStyle = Code("SHMX");
    fRecord.fRawAngle = true;
    EXPECT_FLOAT_EQ(grey(), 0.5f); // the luminance first
    fRecord.fInvertRaw = true;
    EXPECT_FLOAT_EQ(grey(), 3.14159265f - 1);
    fRecord.fSurfaceName = "";
    EXPECT_FLOAT_EQ(grey(), 9 * 3.14159265f); // as it was
    EXPECT_EQ(plugged->fColorCalls, 2);
}

TEST_F(CurvatureTest, TellsNoSize) { EXPECT_THROW(fShader->GetParamsBufferSize(), TMCException); }

TEST(SurfaceCurvatureTest, GivesThePrincipalCurvaturesOfASkewedParametrisation)
{
    for (uint32_t x = 0; x < 3; ++x) { // whichever way the surface faces
        const uint32_t y = (x + 1) % 3;
        float shape[3][3] = {};
        shape[x][x] = -3;
        shape[y][y] = -1;
        TVector3 derivU, derivV;
        derivU[x] = derivU[y] = derivV[y] = 1;
        derivV[x] = 2;
        const SurfaceCurvature measured = MeasureCurvature(derivU, derivV, shape);
        EXPECT_FLOAT_EQ(measured.fMean, 2);
        EXPECT_FLOAT_EQ(measured.fFirstPrincipal, 3);
        EXPECT_FLOAT_EQ(measured.fSecondPrincipal, 1);
    }
}

} // namespace
