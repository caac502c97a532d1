#include "shaders/mapping/Coordinate_Shift.h"
#include "tests/support/FakeScene.h"
#include "tests/support/ShaderTest.h"

namespace {

constexpr GUID kShiftID = {0x4BFCBC62, 0x98F5, 0x4537, {0x8C, 0xAE, 0x77, 0xAD, 0x79, 0x54, 0x90, 0xFF}};

class Coordinate_ShiftTest : public ShaderTest {
protected:
    MCCountedPtr<FakeScene> fScene = fernwick::MakeCounted<FakeScene>();
    MadeShader<Coordinate_ShiftParams> fShift{kShiftID};
    MCCountedPtr<FakeShader> fPlugged = fernwick::MakeCounted<FakeShader>(kOutputSurface);
    ShadingOut fResult;

    Coordinate_ShiftTest()
    {
        Plug(fShift.Record().fSubShader, fPlugged);
        fShift.Changed();
    }
};

TEST_F(Coordinate_ShiftTest, MovesTheSwitchedCoordinatesInPlaceAndForGood)
{
    fShift.Record().fOffset = {1, 2, 3};
    fIn.fPointGlobal = fIn.fPointLocal = {10, 10, 10};
    fShift->ShadeSurface(fResult, fIn);
    EXPECT_EQ(fPlugged->fLastIn.fPointGlobal, TVector3(9, 8, 7));
    EXPECT_EQ(fPlugged->fLastIn.fPointLocal, TVector3(10, 10, 10));

    fShift.Record().fShiftGlobal[0] = false;
    fShift.Record().fShiftLocal[1] = true;
    fShift.Record().fSubShader = nullptr;
    fShift.Changed();
    EXPECT_EQ(fShift->ShadeSurface(fResult, fIn), 0); // moved all the same
    EXPECT_EQ(fIn.fPointGlobal, TVector3(9, 6, 4));
    EXPECT_EQ(fIn.fPointLocal, TVector3(10, 8, 10));
}

TEST_F(Coordinate_ShiftTest, EachAxisHasASwitchInEachSpaceThatCountsAtOnce)
{
    fShift.Record().fOffset = {1, 2, 3};
    for (uint32_t space = 0; space < 2; ++space)
        for (uint32_t axis = 0; axis < 3; ++axis) {
            for (uint32_t i = 0; i < 3; ++i) {
                fShift.Record().fShiftGlobal[i] = space == 0 && i == axis;
                fShift.Record().fShiftLocal[i] = space == 1 && i == axis;
            }
            fIn.fPointGlobal = fIn.fPointLocal = {};
            fShift->ShadeSurface(fResult, fIn);
            TVector3 moved;
            moved[axis] = -static_cast<float>(axis + 1);
            EXPECT_EQ(fIn.fPointGlobal, space == 0 ? moved : TVector3());
            EXPECT_EQ(fIn.fPointLocal, space == 1 ? moved : TVector3());
        }
}

TEST_F(Coordinate_ShiftTest, FollowsTheNamedObjectAndKeepsTheOffsetWhenALookupFails)
{
    FakeElement& shaded = fScene->Add("Shaded");
    FakeElement& target = fScene->Add("Target");
    FakeElement& stray = fScene->Add("Stray");
    stray.fScene = nullptr;
    target.fHotPoint = {50, 50, 50}; // of the place, the origin alone counts
    target.fTransform.fMatrix[0][0] = 50;
    target.fTreeTransform.fUniformScale = 50;
    const auto noElement = fernwick::MakeCounted<FakeElement>();
    noElement->fIsElement = false;
    fShift.Record().fMode = Code("OBJM");
    fShift.Record().fOffset = {99, 99, 99};
    fShift.Record().fObjectName = "Target"; // counts after the change
    const auto expectMove = [&](FakeElement* instance, float move, std::vector<std::string> reports) {
        fIn.fInstance = static_cast<ITreeElement*>(instance);
        fIn.fPointGlobal = {};
        EXPECT_EQ(fShift->ShadeSurface(fResult, fIn), 1);
        EXPECT_EQ(fIn.fPointGlobal, TVector3(move, 0, 0));
        EXPECT_EQ(TakeReports(), reports);
    };
    target.fTransform.fTranslation = {5, 0, 0};
    expectMove(&shaded, 0, {"objecttree"});
    fShift.Changed();
    expectMove(&shaded, -5, {});
    target.fTransform.fTranslation = {7, 0, 0};
    expectMove(&shaded, -7, {}); // looked up anew
    target.fTransform.fTranslation = {8, 0, 0};
    expectMove(nullptr, -7, {"shadingIn.fInstance", "scene"}); // not from the scene of the sample before
    expectMove(noElement.Get(), -7, {"scene"});
    const uint32_t counted = fScene->fRoot->AddRef();
    expectMove(&stray, -7, {"scene"});
    EXPECT_EQ(fScene->fRoot->Release(), counted); // its parent was fetched, and is held
    target.fName = "Renamed";
    expectMove(&shaded, -7, {"objecttree"});
}

TEST_F(Coordinate_ShiftTest, WhatASilentShaderLeavesIsOfTheSampleBeforeAndTheFlagIsItsOwn)
{
    fPlugged->fOn = [this](ShadingIn&) {
        if (fPlugged->fLastFullArea != nullptr) {
            EXPECT_FALSE(*fPlugged->fLastFullArea); // though the last call left it on
        }
    };
    fPlugged->fColor = {0.25f, 0.5f, 0.75f, 0.125f};
    fPlugged->fValue = 0.375f;
    const auto shade = [this](uint32_t kinds, bool silent) {
        fPlugged->fKinds = kinds;
        fPlugged->fSilent = silent;
        fShift.Changed();
        fResult.fColor = {9, 9, 9, 9};
        fShift->ShadeSurface(fResult, fIn);
        return fResult.fColor;
    };
    EXPECT_THAT(shade(kOutputColor, true), IsColor(0, 0, 0, 0));
    EXPECT_THAT(shade(kOutputColor, false), IsColor(0.25f, 0.5f, 0.75f, 0.125f));
    EXPECT_THAT(shade(kOutputValue, true), IsColor(0, 0, 0, 9));
    EXPECT_THAT(shade(kOutputValue, false), IsColor(0.375f, 0.375f, 0.375f, 9));
    EXPECT_THAT(shade(kOutputColor, true), IsColor(0.25f, 0.5f, 0.75f, 0.125f));
    EXPECT_THAT(shade(kOutputValue, true), IsColor(0.375f, 0.375f, 0.375f, 9));
}

TEST_F(Coordinate_ShiftTest, AsksForSurfaceThenColourThenValue)
{
    fPlugged->fSurface.fColor = {1, 1, 1, 1};
    fPlugged->fColor = {2, 2, 2, 2};
    fPlugged->fValue = 3;
    for (const auto& [kinds, grey, alpha] : {std::tuple{22u, 1, 1}, {14u, 2, 2}, {10u, 3, 9}, {8u, 9, 9}}) {
        fPlugged->fKinds = kinds;
        fShift.Changed();
        fResult.fColor = {9, 9, 9, 9};
        fIn.fChannelMask = 5;
        EXPECT_EQ(fShift->ShadeSurface(fResult, fIn), 1);
        EXPECT_THAT(fResult.fColor, IsColor(grey, grey, grey, alpha));
        EXPECT_EQ(fIn.fChannelMask, 5u);
    }
}

} // namespace
