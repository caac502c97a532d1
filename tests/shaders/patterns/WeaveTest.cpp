#include "shaders/patterns/Weave.h"
#include "tests/support/ShaderTest.h"
#include "tests/support/Socket.h"

namespace {

constexpr GUID kWeaveID = {0x608112FA, 0x2448, 0x4404, {0x8E, 0x96, 0x17, 0xA8, 0xC6, 0xB5, 0xE9, 0xF9}};

/// Of the basic cloth with gaps and widths of 1, threads lie at 0.125 to 0.375 and 0.625 to 0.875.
class WeaveTest : public ShaderTest {
protected:
    MadeShader<WeaveParams> fWeave{kWeaveID};
    WeaveParams& fParams = fWeave.Record();
    MCCountedPtr<FakeShader> fWarp = FakeColor({1, 0.5f, 0.25f, 0.5f});
    MCCountedPtr<FakeShader> fWeft = FakeColor({0, 1, 0, 0.25f});
    MCCountedPtr<FakeShader> fGap = FakeColor({0, 0, 1, 0.75f});

    void PlugThreads(int count = 1)
    {
        for (int i = 0; i < count; ++i) {
            Plug(fParams.fWarpSubShader[i], fWarp);
            Plug(fParams.fWeftSubShader[i], fWeft);
        }
    }
    TMCColorRGBA Unchanged(float u, float v)
    {
        fFullArea = true;
        fIn.fUV = {u, v};
        TMCColorRGBA color{9, 9, 9, 9};
        EXPECT_EQ(fWeave->ShadeColor(color, fFullArea, fIn), 1.0f);
        return color;
    }
    TMCColorRGBA At(float u, float v)
    {
        EXPECT_EQ(fWeave.Changed(), MC_S_OK);
        return Unchanged(u, v);
    }
    float MaskAt(float u, float v)
    {
        fParams.fMask = true;
        return At(u, v).fRed;
    }
    TVector3 NormalAt(float u, float v)
    {
        fWeave.Changed();
        fIn.fUV = {u, v};
        TVector3 vector(9, 9, 9);
        EXPECT_EQ(fWeave->ShadeVector(vector, fIn), 1.0f);
        return vector;
    }
};

TEST_F(WeaveTest, BasicModeForcesAPlainClothOfTwoAndWritesItBack)
{
    fParams.fWarpWidth[0] = 3;
    fParams.fWarpWidth[1] = 7;
    fParams.fWarpGap = 3;
    for (auto& row : fParams.fPattern)
        for (TMCBool& crossing : row)
            crossing = true;
    EXPECT_EQ(MaskAt(0.3f, 0), 1); // nothing is connected, and yet there are threads
    EXPECT_EQ(fParams.fWarpWidth[1], 3);
    EXPECT_EQ(fParams.fWarpWidth[2], 1);
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(fParams.fPattern[j][i], j == 2 || i == 2 || i != j);

    fParams.fMask = false;
    EXPECT_THAT(At(0.3f, 0), IsColor(0, 0, 0, 9));
    Plug(fParams.fWarpSubShader[0], fWarp);
    const auto unused = FakeColor({1, 1, 1, 1}, 0); // neither its kinds nor its colour count
    Plug(fParams.fWarpSubShader[1], unused);
    EXPECT_THAT(At(0.7f, 0), IsColor(1, 0.5f, 0.25f, 0.5f)); // the first sub-shader serves both threads
}

TEST_F(WeaveTest, FullModeUsesTheLeadingRunAndEachThreadsOwnSubShader)
{
    fParams.fWeaveMode = Code("FULL");
    Plug(fParams.fGapSubShader, fGap);
    EXPECT_THAT(At(0.25f, 0.25f), IsColor(0, 0, 0, 9)); // no thread at all, and no gap
    EXPECT_FALSE(fFullArea);
    Plug(fParams.fWarpSubShader[0], fWarp);
    EXPECT_EQ(At(0.5f, 0).fRed, 1);
    fParams.fWarpSubShader[0] = nullptr;
    PlugThreads(2);
    fParams.fPattern[1][0] = false; // row: weft, column: warp
    EXPECT_EQ(At(0.25f, 0.75f).fGreen, 1);
    EXPECT_EQ(At(0.75f, 0.25f).fRed, 1);
    fParams.fAlongUV = true;
    At(0.25f, 0.5f); // in the middle between two dives of the first warp
    EXPECT_EQ(fIn.fUV[1], 0.5f);
    fWeft->fKinds = 8; // any kind is asked for a colour
    Plug(fParams.fWarpSubShader[1], fWeft);
    EXPECT_EQ(At(0.75f, 0).fGreen, 1);
    Plug(fParams.fWarpSubShader[2], fWarp);
    fParams.fWarpSubShader[1] = nullptr;
    EXPECT_EQ(At(0.5f, 0).fRed, 1); // one thread from 0.25 to 0.75
    fWarp->fKinds = 0;              // a thread all the same, that isn't asked
    fWarp->fColorCalls = 0;
    EXPECT_THAT(At(0.5f, 0), IsColor(0, 0, 0, 9));
    EXPECT_EQ(fWarp->Calls(), 0);
    EXPECT_EQ(MaskAt(0.5f, 0), 1);
}

TEST_F(WeaveTest, ARemovedSubShaderIsDroppedAndAFailedQueryShowsInTheResult)
{
    PlugThreads();
    At(0.25f, 0.5f);
    fParams.fWarpSubShader[0] = nullptr;
    EXPECT_THAT(At(0.25f, 0.5f), IsColor(0, 0, 0, 9));
    std::vector<SubShaderSlot*> slots = {&fParams.fDisplaceBeforeSubShader, &fParams.fDisplaceAfterSubShader,
        &fParams.fGapSubShader, &fParams.fWarpSubShader[0]};
    for (int i = 1; i < kThreadsPerGroup; ++i)
        slots.insert(slots.end(), {&fParams.fWarpSubShader[i], &fParams.fWeftSubShader[i]});
    for (SubShaderSlot* const slot : slots) {
        *slot = fernwick::MakeCounted<Socket>().Get(); // refuses
        EXPECT_EQ(fWeave.Changed(), 1);
        EXPECT_EQ(Unchanged(0.5f, 0.25f).fGreen, 1); // the rest is connected
        *slot = nullptr;
    }
    EXPECT_EQ(fWeave.Changed(), MC_S_OK);
    fParams.fWeftSubShader[0] = fernwick::MakeCounted<Socket>().Get();
    EXPECT_EQ(fWeave.Changed(), 1);
}

TEST_F(WeaveTest, QueriesAllSlotsBeforeItReadsAKindAndLetsGoBackwards)
{
    const auto socket = fernwick::MakeCounted<Socket>();
    socket->fShader = FakeColor({0, 0, 1, 1});
    socket->fOnQuery = [this] { fWarp->fKinds = kOutputColor; };
    fWarp->fKinds = 0;
    PlugThreads();
    fParams.fGapSubShader = socket.Get();
    EXPECT_EQ(At(0.25f, 0.5f).fRed, 1);

    LeavingOrder order;
    {
        const MadeShader<WeaveParams> weave(kWeaveID);
        WeaveParams& record = weave.Record();
        for (SubShaderSlot* const slot : {&record.fDisplaceBeforeSubShader, &record.fGapSubShader,
                 &record.fWarpSubShader[0], &record.fWarpSubShader[4], &record.fWeftSubShader[1]})
            order.Plug(*slot);
        weave.Changed();
    }
    EXPECT_EQ(order.Text(), "1s 0s 4s 3s 2s 4p 3p 2p 1p 0p ");
}

TEST_F(WeaveTest, DerivesLayoutProfileAndKindsAtTheChangeAndReadsTheRestInEachSample)
{
    const auto grey = FakeColor({0.5f, 0.5f, 0.5f, 1});
    Plug(fParams.fDisplaceBeforeSubShader, grey);
    Plug(fParams.fDisplaceAfterSubShader, grey);
    Plug(fParams.fGapSubShader, fGap);
    PlugThreads(2);
    Plug(fParams.fWarpSubShader[1], fGap);
    fParams.fWeaveMode = Code("FULL");
    fParams.fRoundAcross = fParams.fRoundAlong = true;
    const float round = At(0.1875f, 0.1875f).fGreen; // the first weft thread, beside both centres
    for (const auto& shader : {fWarp, fWeft, fGap, grey})
        shader->fKinds = 0;
    fParams.fWarpGap = fParams.fWeftGap = fParams.fWarpWidth[0] = fParams.fWeftWidth[0] = 9;
    fParams.fProfileAcross = fParams.fProfileAlong = 9;
    fParams.fWarpSubShader[0] = fParams.fWeftSubShader[0] = fParams.fGapSubShader = nullptr;
    EXPECT_EQ(Unchanged(0.1875f, 0.1875f).fGreen, round);
    EXPECT_EQ(Unchanged(0, 0).fBlue, 1);
    fIn.fNormalGlobal = {0, 0, 1};
    fIn.fDerivU = {1, 0, 0};
    fIn.fDerivV = {0, 1, 0};
    TVector3 normal;
    fIn.fUV = {0.1875f, 0.1875f}; // a sixteenth off both centres
    fWeave->ShadeVector(normal, fIn);
    EXPECT_NEAR(normal[0], -2 / 16.0 / 1.5, 1e-3);
    EXPECT_NEAR(normal[1], -2 / 16.0 / 1.5, 1e-3);

    fParams.fDisplaceBefore = 50; // a quarter
    EXPECT_EQ(Unchanged(-0.0625f, -0.0625f).fGreen, round);
    std::swap(fParams.fDisplaceBefore, fParams.fDisplaceAfter);
    EXPECT_EQ(Unchanged(-0.0625f, -0.0625f).fGreen, round);
    fParams.fDisplaceAfter = 0;
    fParams.fPattern[0][0] = true;
    EXPECT_GT(Unchanged(0.1875f, 0.1875f).fRed, 0);
    fParams.fRoundAcross = fParams.fRoundAlong = false;
    EXPECT_EQ(Unchanged(0.75f, 0).fBlue, 1);
    fParams.fWeaveMode = Code("BSCM");
    EXPECT_EQ(Unchanged(0.75f, 0).fRed, 1);
    fParams.fRepeatU = 2; // the tile is as large as before
    EXPECT_EQ(Unchanged(0.375f, 0).fRed, 1);
    EXPECT_EQ(Unchanged(0.875f, 0).fRed, 0); // beyond its end
    fParams.fAcrossUV = fParams.fAlongUV = true;
    Unchanged(0.3125f, 0.5f);
    EXPECT_EQ(fIn.fUV, TVector2(0, static_cast<float>(0.625 / 0.75)));
    fParams.fMask = true;
    EXPECT_THAT(Unchanged(0.375f, 0), IsColor(1, 1, 1, 9));
    EXPECT_EQ(fIn.fUV, TVector2(0.375f, 0));
}

TEST_F(WeaveTest, TilesKeepTheSignAndZeroIsAGap)
{
    PlugThreads();
    fParams.fRepeatU = 4;
    EXPECT_EQ(MaskAt(0.3125f, 0), 1); // a quarter into the second tile
    EXPECT_EQ(MaskAt(-0.1875f, 0), 0);
    EXPECT_EQ(MaskAt(0, 0), 0);
    fParams.fRepeatU = 0;
    EXPECT_EQ(MaskAt(0.3125f, 0), 0);
    fParams.fMaskInvert = true;
    EXPECT_THAT(At(0, 0), IsColor(1, 1, 1, 9));
    EXPECT_THAT(At(0, 0.25f), IsColor(0, 0, 0, 9));
}

TEST_F(WeaveTest, HandsTheThreadItsOwnUVAndLeavesItThere)
{
    PlugThreads();
    At(0.3f, 0.05f);
    EXPECT_EQ(fWarp->fLastIn.fUV, TVector2(0.3f, 0.05f));
    At(0.05f, 0.3f);
    EXPECT_EQ(fWeft->fLastIn.fUV, TVector2(0.3f, 0.05f));
    EXPECT_EQ(fIn.fUV, TVector2(0.3f, 0.05f));
    fParams.fAcrossUV = true;
    At(0.5f, 0.1875f);
    EXPECT_EQ(fIn.fUV, TVector2(0.25f, 0.5f));
    fParams.fAlongUV = true;
    At(0.5f, 0.1875f); // the weft dives from 0.625 to 0.875; its span begins there and ends at 1.625
    EXPECT_FLOAT_EQ(fIn.fUV[1], static_cast<float>(0.625 / 0.75));
    At(0.1875f, 0.5f);
    EXPECT_FLOAT_EQ(fIn.fUV[1], static_cast<float>(0.125 / 0.75));
}

TEST_F(WeaveTest, SubShadersShareTheCallersFlagAndOneScratchColour)
{
    const auto before = FakeColor({0, 0, 0, 0.125f});
    const auto after = FakeColor({0, 0, 0, 0.0625f});
    Plug(fParams.fDisplaceBeforeSubShader, before);
    Plug(fParams.fDisplaceAfterSubShader, after);
    Plug(fParams.fGapSubShader, fGap);
    PlugThreads();
    fParams.fDisplaceBefore = 1;
    EXPECT_EQ(At(0.25f, 0.5f).fRed, 1);
    EXPECT_EQ(At(0.5f, 0.25f).fGreen, 1);
    EXPECT_FALSE(before->fHandedFullArea);
    EXPECT_EQ(fWarp->fLastFullArea, &fFullArea);
    EXPECT_EQ(fWeft->fLastFullArea, &fFullArea);
    EXPECT_EQ(before->fLastFullArea, &fFullArea);
    fGap->fSilent = true;
    EXPECT_THAT(At(0, 0), IsColor(0, 0, 0, 0.125f)); // what the displacement left
    EXPECT_EQ(fGap->fLastFullArea, &fFullArea);
    fParams.fDisplaceAfter = 1;
    EXPECT_THAT(At(0, 0), IsColor(0, 0, 0, 0.0625f));
    EXPECT_EQ(after->fLastFullArea, &fFullArea);
    fParams.fDisplaceBefore = fParams.fDisplaceAfter = 0;
    At(0.25f, 0.5f);
    EXPECT_THAT(At(0, 0), IsColor(1, 0.5f, 0.25f, 0.5f)); // the thread's, over the change too

    fParams.fDisplaceBefore = fParams.fDisplaceAfter = 1;
    fParams.fAcrossUV = fParams.fRoundAcross = true;
    fFullArea = true;
    NormalAt(0.5f, 0.25f);
    EXPECT_EQ(fIn.fUV, TVector2(0.5f, 0.25f)); // changed for colours alone
    EXPECT_NE(before->fLastFullArea, &fFullArea);
    EXPECT_EQ(before->fLastFullArea, after->fLastFullArea);
    EXPECT_FALSE(before->fHandedFullArea);
}

TEST_F(WeaveTest, DarkensByTheCrossSectionOfTheTopThread)
{
    PlugThreads();
    fParams.fProfileAcross = 2;
    fParams.fProfileAlong = 1;
    fParams.fRoundAcross = true;
    const float across = 1 - 0.25f * 0.25f; // half way to the edge, at flatness 2
    EXPECT_THAT(At(0.1875f, 0.5f), IsColor(across, across / 2, across / 4, 0.5f));
    fParams.fAlongUV = true; // brings in the place along: 0.25 of 0.375 from the middle
    const float both = static_cast<float>(1 - (0.0625 + 4.0 / 9));
    EXPECT_FLOAT_EQ(At(0.1875f, 0.5f).fRed, both);
    fParams.fAlongUV = false;
    fParams.fRoundAlong = true;
    EXPECT_FLOAT_EQ(At(0.5f, 0.1875f).fGreen, both);
    fParams.fProfileAcross = 0.25f; // below 0 at the sides
    fParams.fRoundAlong = false;
    EXPECT_THAT(At(0.1875f, 0.5f), IsColor(-3, -1.5f, -0.75f, 0.5f));
    const int calls = fWeft->Calls();
    EXPECT_EQ(MaskAt(0.5f, 0.1875f), 1); // a mask is plain
    EXPECT_EQ(fIn.fUV, TVector2(0.5f, 0.1875f));
    EXPECT_EQ(fWeft->Calls(), calls);
}

TEST_F(WeaveTest, AGapShowsItsSubShader)
{
    Plug(fParams.fGapSubShader, fGap);
    for (const uint32_t kinds : {2u, 4u, 16u, 3u}) {
        fGap->fKinds = kinds;
        EXPECT_THAT(At(0, 0), IsColor(0, 0, 1, 0.75f)) << kinds;
    }
    EXPECT_EQ(fGap->fLastFullArea, &fFullArea);
    EXPECT_TRUE(fFullArea); // as the sub-shader left it
    fGap->fValue = 0.5f;
    fGap->fKinds = 1;
    EXPECT_THAT(At(0, 0), IsColor(0.5f, 0.5f, 0.5f, 9));
    fGap->fKinds = kOutputVector;
    EXPECT_THAT(At(0, 0), IsColor(0, 0, 0, 9));
    EXPECT_FALSE(fFullArea);
}

TEST_F(WeaveTest, DisplacesBothCoordinatesBeforeAndInsideTheTile)
{
    const auto grey = FakeColor({0.5f, 0.5f, 0.5f, 1}, kOutputValue); // asked for its colour all the same
    grey->fValue = 9;
    Plug(fParams.fDisplaceBeforeSubShader, grey);
    fParams.fRepeatU = fParams.fRepeatV = 2;
    EXPECT_EQ(MaskAt(0, 0), 0);
    EXPECT_EQ(grey->Calls(), 0); // no strength
    fParams.fDisplaceBefore = 25;
    EXPECT_EQ(MaskAt(0, 0.8f), 1); // 0.125 of the plane, 0.25 of the tile
    EXPECT_EQ(MaskAt(0.8f, 0), 1);
    EXPECT_EQ(grey->fValueCalls, 0);
    grey->fKinds = 1;
    grey->fValue = -0.5f;
    EXPECT_EQ(MaskAt(0.25f, 0.9f), 1);
    EXPECT_EQ(grey->fValueCalls, 1);
    fParams.fDisplaceBefore = 0;
    grey->fKinds = kOutputColor;
    Plug(fParams.fDisplaceAfterSubShader, grey);
    fParams.fDisplaceAfter = -50;
    EXPECT_EQ(MaskAt(0.25f, 0.25f), 1); // from the middle of the tile back onto the first threads
    fParams.fDisplaceAfter = 300;
    EXPECT_EQ(MaskAt(0.125f, 0.125f), 0); // leaves the tile
    const auto own = FakeValue(0.1f, 1);  // either has its own shader, kinds and strength
    Plug(fParams.fDisplaceBeforeSubShader, grey);
    Plug(fParams.fDisplaceAfterSubShader, own);
    fParams.fRepeatU = fParams.fRepeatV = 1;
    fParams.fDisplaceBefore = 20;
    fParams.fDisplaceAfter = 100;
    EXPECT_EQ(MaskAt(0, 0), 1); // a tenth each, as far as 0.2

    fParams = {};
    fParams.fDisplaceAfter = -1; // by nothing, which still turns the tile's -0 into 0
    fParams.fWarpGap = 0;
    fParams.fAcrossUV = true;
    At(-1, 0);
    EXPECT_FALSE(std::signbit(fIn.fUV[0]));
}

TEST_F(WeaveTest, BendsTheGlobalNormalAboutTheDerivatives)
{
    fIn.fNormalGlobal = {0, 0, 2};
    fIn.fNormalLocal = {1, 2, 3};
    fIn.fDerivU = {1, 0, 0};
    fIn.fDerivV = {0, 1, 0};
    fParams.fProfileAcross = fParams.fProfileAlong = 2; // axes of length 1
    EXPECT_EQ(NormalAt(0, 0), TVector3(1, 2, 3));
    EXPECT_EQ(NormalAt(0.2f, 0.5f), TVector3(9, 9, 9)); // not rounded

    // The warp at (0.2, 0.45) lies 0.05 across and 0.3 along, the weft at (0.45, 0.2) 0.05 and -0.2.
    const auto expect = [this](bool across, bool along, float u, float v, TVector3 expected) {
        fParams.fRoundAcross = across;
        fParams.fRoundAlong = along;
        EXPECT_LT(Length(NormalAt(u, v) - expected), 1e-5);
    };
    expect(true, false, 0.2f, 0.45f, {-0.1f, 0, 1.997498f});
    expect(true, true, 0.2f, 0.45f, {-0.047697f, -0.3f, 0.952746f}); // scaled to length 1 in between
    expect(false, true, 0.45f, 0.2f, {0.4f, 0, 1.959592f});
    expect(true, true, 0.45f, 0.2f, {0.2f, -0.048990f, 0.978570f});
    fIn.fDerivV = {0.5f, 0.3f, -0.2f}; // any axis, turned about by its own length
    fIn.fNormalGlobal = {0.4f, -0.3f, 0.8f};
    expect(true, false, 0.2f, 0.45f, {0.390468f, -0.275644f, 0.812512f});
    fIn.fDerivV = {0, 1, 0};
    fParams.fProfileAcross = 0.5f; // an axis of length 4 isn't scaled back
    fIn.fNormalGlobal = {0, 3, 1};
    expect(true, false, 0.2f, 0.45f, {-0.2f, 3 * (0.998749f + 16 * 0.001251f), 0.998749f});
}

TEST_F(WeaveTest, AnswersBeforeTheFirstChangeAndWithAnyNumbers)
{
    EXPECT_THAT(Unchanged(0.25f, 0.25f), IsColor(0, 0, 0, 9));
    PlugThreads(5);
    fParams.fWeaveMode = Code("FULL");
    *reinterpret_cast<unsigned char*>(&fParams.fRoundAlong) = 2; // any byte but 0 is true
    for (const int32_t number : {INT32_MIN, 0, INT32_MAX}) {
        fParams.fWarpGap = fParams.fWeftWidth[1] = fParams.fWarpWidth[1] = fParams.fWarpWidth[2] = number;
        fParams.fRepeatU = fParams.fDisplaceAfter = number;
        for (const float place : {-0.4f, 0.0f, 0.3f, 1.0e30f, kNaN, kInfinity}) {
            At(place, 0.3f);
            NormalAt(0.3f, place);
        }
    }
}

} // namespace
