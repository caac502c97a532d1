#include "shaders/layers/Super_mixer.h"
#include "shaders/layers/Super_mixer_top.h"
#include "tests/shaders/layers/LayerTest.h"

namespace {

struct ColorMixer {
    using Params = Super_mixerParams;
    static constexpr GUID kID
        = {0x2B82DA60, 0xA115, 0x11D7, {0xA9, 0x26, 0x54, 0x55, 0x43, 0x44, 0x52, 0x00}};
    static constexpr float kCurve = 0x1.872208p-4f; // the float sine
    static constexpr float kOwnAlpha = 0.5f;        // of the caller's colour, below all layers
    static constexpr float kMeanOfFiveInThree = 5 / 3.0f;
    static bool Shade(I3DExShader& mixer, ShadingOut& result, bool& fullArea, ShadingIn& in)
    {
        return mixer.ShadeColor(result.fColor, fullArea, in) != 0.0f;
    }
};

struct SurfaceMixer {
    using Params = Super_mixer_topParams;
    static constexpr GUID kID
        = {0x490D324B, 0xB207, 0x4B1D, {0xA2, 0xAF, 0xE8, 0xCA, 0xB3, 0xC9, 0xD1, 0x06}};
    static constexpr float kCurve = 0x1.872216p-4f; // the double sine
    static constexpr float kOwnAlpha = 0;
    static constexpr float kMeanOfFiveInThree = 5 * static_cast<float>(1.0 / 3); // a float above
    static bool Shade(I3DExShader& mixer, ShadingOut& result, bool&, ShadingIn& in)
    {
        return mixer.ShadeSurface(result, in) != 0;
    }
};

/// A mixer with a control and ten white layers plugged in.
template <class Mixer> class RangeMixTest : public ShaderTest {
protected:
    using Made = MadeShader<typename Mixer::Params>;

    Made fMixer{Mixer::kID};
    typename Mixer::Params& fRecord = fMixer.Record();
    MCCountedPtr<FakeShader> fControl = FakeValue(0);
    MCCountedPtr<FakeShader> fLayers[10];
    ShadingOut fResult;

    RangeMixTest()
    {
        Plug(fRecord.fSubShader[0], fControl);
        for (int layer = 0; layer < 10; ++layer)
            Plug(fRecord.fSubShader[layer + 2], fLayers[layer] = FakeColor({1, 1, 1, 1}));
        fMixer.Changed();
        fIn.fChannelMask = 5;
    }
    bool Shade(const Made& mixer)
    {
        fResult.fColor = {9, 9, 9, 0.5f};
        return Mixer::Shade(*mixer, fResult, fFullArea, fIn);
    }
    TMCColorRGBA Shade(float control)
    {
        fControl->fValue = control;
        EXPECT_TRUE(Shade(fMixer));
        return fResult.fColor;
    }
    /// The layers that take part in a sample, by digit.
    std::string Taken(float control)
    {
        for (const auto& layer : fLayers)
            layer->fColorCalls = 0;
        Shade(control);
        std::string taken;
        for (int layer = 0; layer < 10; ++layer)
            if (fLayers[layer]->fColorCalls > 0)
                taken += std::to_string(layer);
        return taken;
    }
    /// Puts the first `count` layers from 20 to 40, with half the weight at 25, and the others out of reach.
    void Fade(int count)
    {
        for (TVector2& range : fRecord.fRange)
            range = count-- > 0 ? TVector2(20, 40) : TVector2(200, 300);
        fRecord.fSmooth = fRecord.fLinearEdge = true;
        fRecord.fSmoothWidth = 50;
    }
    void Layer(int layer, IMCUnknown* shader)
    {
        fRecord.fSubShader[layer + 2] = shader;
        fMixer.Changed();
    }
};
using Mixers = testing::Types<ColorMixer, SurfaceMixer>;
TYPED_TEST_SUITE(RangeMixTest, Mixers);

TYPED_TEST(RangeMixTest, BothEndsOfARangeBelongToItAndOvershootRepeatsTheSampleBefore)
{
    const std::pair<float, const char*> samples[] = {{1.0000001f, "0"}, {0.1f, "01"}, {0.35f, "3"},
        {1.0000001f, "3"}, {1, "9"}, {-0.01f, ""}, {kNaN, ""}, {0.35f, "3"}};
    for (const auto& [control, taken] : samples)
        EXPECT_EQ(this->Taken(control), taken) << control;
    this->fMixer.Changed();
    EXPECT_EQ(this->Taken(2), "0"); // forgotten
}

TYPED_TEST(RangeMixTest, ShiftsClampsAndRemembersTheShiftedControl)
{
    const auto shift = FakeColor({1, 1, 1, 0});
    const std::tuple<uint32_t, float, float, const char*> samples[]
        = {{kOutputVector, 0, 0.35f, "3"}, {kOutputVector, 0, -0.25f, "0"}, {kOutputValue, 1, 0.32f, "3"},
            {kOutputValue, 1, 7, "4"}, {kOutputValue, 1, 1, "9"}, {kOutputValue, kNaN, 0.5f, "0"},
            {kOutputColor | kOutputValue, 0, 0.58f, "6"}};
    Plug(this->fRecord.fSubShader[1], shift);
    this->fMixer.Changed();
    EXPECT_EQ(this->Taken(0.55f), "5"); // not asked
    this->fRecord.fMixStyle = 0;
    EXPECT_EQ(this->Taken(0.55f), "5");
    EXPECT_EQ(shift->Calls(), 0);
    PlugNoShader(this->fRecord.fSubShader[1]);
    this->fMixer.Changed();
    this->fRecord.fMixStyle = Code("SHMX");
    this->fRecord.fRange[0][1] = 0.5f;  // below 0 is exactly 0
    EXPECT_EQ(this->Taken(0.55f), "5"); // an empty slot doesn't shift
    Plug(this->fRecord.fSubShader[1], shift);
    for (const auto& [kinds, value, control, taken] : samples) {
        if (std::exchange(shift->fKinds, kinds) != kinds)
            this->fMixer.Changed();
        shift->fValue = value;
        EXPECT_EQ(this->Taken(control), taken) << control;
    }
}

TYPED_TEST(RangeMixTest, ASilentShiftIsThatOfNoneAndASilentLayerTheOneBefore)
{
    const auto shift = FakeValue(0.5f);
    this->fRecord.fMixStyle = Code("SHMX");
    Plug(this->fRecord.fSubShader[1], shift);
    this->fLayers[5]->fSilent = true;
    this->fLayers[4]->fColor = {0.25f, 0.5f, 0.75f, 1};
    this->fMixer.Changed();
    EXPECT_THAT(this->Shade(0.55f), IsColor(0, 0, 0, TypeParam::kOwnAlpha)); // no layer so far
    EXPECT_EQ(this->Taken(0.45f), "4");
    EXPECT_THAT(this->Shade(0.55f), IsColor(0.25f, 0.5f, 0.75f, 1 + TypeParam::kOwnAlpha));
    shift->fSilent = true; // 0, whatever it was before: 5 percent less
    EXPECT_EQ(this->Taken(0.36f), "3");
    EXPECT_EQ(this->Taken(0.34f), "2");
}

TYPED_TEST(RangeMixTest, TheTenthLayerStandsInOnlyWhereNoEarlierOneTookTheSample)
{
    this->Fade(1);
    EXPECT_EQ(this->Taken(0.5f), "");
    this->fRecord.fLastIsDefault = true;
    EXPECT_EQ(this->Taken(0.4f), "0"); // though with weight 0
    this->fRecord.fRange[9] = {60, 80};
    EXPECT_EQ(this->Taken(0.5f), "9");
    EXPECT_EQ(this->fResult.fColor.fRed, -1); // the ramp goes on below its foot
}

TYPED_TEST(RangeMixTest, EdgesFade)
{
    const std::tuple<TVector2, int32_t, float, float, float> cases[] = {{{20, 40}, 50, 0.2f, 0, 0},
        {{20, 40}, 50, 0.375f, 0.25f, 0.14644661f}, {{20, 40}, 25, 0.28f, 1, 1}, {{20, 40}, 25, 0.32f, 1, 1},
        {{20, 30}, 400, 0.25f, 1, 1}, {{20, 30}, 400, 0.26f, 0.1f, 0.024471741f}, {{0, 40}, 50, 0, 1, 1},
        {{60, 100}, 50, 1, 1, 1}, {{60, 120}, 50, 1, 2 / 3.0f, 0.75f}, {{-20, 40}, 50, 0, 2 / 3.0f, 0.75f},
        {{20, 40}, 0, 0.39f, 1, 1}, {{20, 40}, 0, 0.4f, kNaN, kNaN}};
    this->Fade(1);
    for (const auto& [range, width, control, linear, curved] : cases)
        for (const bool isLinear : {true, false}) {
            this->fRecord.fRange[0] = range;
            this->fRecord.fSmoothWidth = width;
            this->fRecord.fLinearEdge = isLinear;
            const float weight = isLinear ? linear : curved;
            EXPECT_THAT(this->Shade(control).fRed, testing::NanSensitiveFloatNear(weight, 1e-6f)) << control;
        }
    this->fRecord.fSmoothWidth = 50;
    EXPECT_EQ(this->Shade(0.38f).fRed, TypeParam::kCurve);
    EXPECT_EQ(this->Shade(0.3f).fRed, 1); // whole again in the middle
    this->Shade(0.38f);
    this->fRecord.fSmooth = false;
    EXPECT_EQ(this->Shade(0.38f).fRed, 1);
}

TYPED_TEST(RangeMixTest, RoundsShiftAndColourLevelInDoubleAndWidthAndCountInFloat)
{
    auto& record = this->fRecord;
    record.fColor = {0, 0.35f, 0.85f, 0};
    this->fMixer.Changed();
    EXPECT_EQ(record.fColorLevel, 29);
    record.fColor = {0, 1, 0, 0};
    this->fMixer.Changed();
    EXPECT_EQ(record.fColorLevel, 59);

    this->Fade(1);
    record.fRange[0] = {10, 19};
    record.fSmoothWidth = 70;
    EXPECT_EQ(this->Shade(0.11f).fRed, 0.158730149f);
    this->Fade(3);
    record.fSmooth = false;
    this->fLayers[0]->fColor.fRed = 3;
    EXPECT_EQ(this->Shade(0.3f).fRed, TypeParam::kMeanOfFiveInThree);

    record.fRange[0] = {0.339999974f, 0.339999974f}; // the shifted percentage and no other
    record.fMixStyle = Code("SHMX");
    record.fShiftAmount = 7;
    Plug(record.fSubShader[1], FakeValue(0.12f));
    this->fMixer.Changed();
    EXPECT_EQ(this->Taken(0.03f), "0");
}

TYPED_TEST(RangeMixTest, SlotsWithoutAShaderDontCount)
{
    for (int layer = 1; layer < 9; ++layer)
        PlugNoShader(this->fRecord.fSubShader[layer + 2]);
    this->fMixer.Changed();
    this->fRecord.fLastIsDefault = true;
    EXPECT_EQ(this->Taken(0.35f), "9"); // the range of the fourth holds it
    for (TVector2& range : this->fRecord.fRange)
        range = {0, 100};
    this->fLayers[9]->fColor = {0, 0, 0, 1};
    EXPECT_EQ(this->Shade(0.5f).fRed, 0.5f);
}

TYPED_TEST(RangeMixTest, AKeptShaderIsAskedForItsKindsAnewAtTheChange)
{
    const auto& layer = this->fLayers[3];
    this->fRecord.fSubShader[5] = nullptr;
    layer->fKinds = kOutputValue;
    this->Shade(0.35f);
    EXPECT_EQ(layer->fValueCalls, 0);
    this->fMixer.Changed();
    this->Shade(0.35f);
    EXPECT_EQ(layer->fValueCalls, 1);
    this->fRecord.fDistribution = Code("audi"); // no code of its own
    this->fRecord.fRange[3] = {30, 45};
    this->fMixer.Changed();
    EXPECT_EQ(this->fRecord.fRange[3], TVector2(30, 45));
}

TYPED_TEST(RangeMixTest, TheColoursOfControlShiftAndBypassStayInTheScratch)
{
    const auto control = FakeColor({0.35f, 0.35f, 0.35f, 0.25f});
    const auto shift = FakeColor({0.5f, 0.5f, 0.5f, 0.75f});
    Plug(this->fRecord.fSubShader[0], control);
    Plug(this->fRecord.fSubShader[1], shift);
    this->fMixer.Changed();
    this->fLayers[3]->fSilent = true;
    const float own = TypeParam::kOwnAlpha;
    EXPECT_THAT(this->Shade(0.0f), IsColor(0.35f, 0.35f, 0.35f, own + 0.25f));
    EXPECT_FALSE(control->fHandedFullArea);
    EXPECT_EQ(this->fLayers[3]->fLastFullArea, control->fLastFullArea);
    this->fRecord.fMixStyle = Code("SHMX");
    EXPECT_THAT(this->Shade(0.0f), IsColor(0.5f, 0.5f, 0.5f, own + 0.75f));
    EXPECT_EQ(shift->fLastFullArea, control->fLastFullArea);
    Plug(this->fRecord.fSubShader[0], this->fControl);
    this->fRecord.fMixStyle = Code("SMMX");
    this->fMixer.Changed();
    this->fControl->fColor = {0.1f, 0.2f, 0.3f, 0.4f};
    this->fRecord.fBypass = true;
    this->Shade(0.35f);
    EXPECT_FALSE(this->fControl->fHandedFullArea);
    this->fRecord.fBypass = false;
    EXPECT_THAT(this->Shade(0.35f), IsColor(0.1f, 0.2f, 0.3f, own + 0.4f));
}

TYPED_TEST(RangeMixTest, TellsEachRefusedSlotAndLetsGoBackwards)
{
    for (SubShaderSlot& slot : this->fRecord.fSubShader) {
        PlugNoShader(slot);
        EXPECT_EQ(this->fMixer.Changed(), 1u);
        slot = nullptr;
    }
    EXPECT_EQ(this->fMixer.Changed(), MC_S_OK);
    LeavingOrder order;
    {
        const typename TestFixture::Made mixer(TypeParam::kID);
        for (const int slot : {0, 1, 11})
            order.Plug(mixer.Record().fSubShader[slot]);
        mixer.Changed();
    }
    EXPECT_EQ(order.Text(), "2s 1s 0s 2p 1p 0p ");
}

TYPED_TEST(RangeMixTest, KeepsEmptiedSlotsDropsFailedOnesAndDistributesTheRanges)
{
    auto& record = this->fRecord;
    for (SubShaderSlot& slot : record.fSubShader)
        slot = nullptr;
    record.fColor = {-0.5f, -0.25f, -0.125f, 9};
    EXPECT_EQ(this->fMixer.Changed(), MC_S_OK);
    EXPECT_EQ(record.fColorLevel, -31); // cut, not rounded down
    EXPECT_EQ(this->Taken(0.1f), "01");
    for (const int failed : {0, 2, 3, 4, 5, 6, 7})
        PlugNoShader(record.fSubShader[failed + 2]);
    record.fDistribution = Code("AUDI");
    EXPECT_EQ(this->fMixer.Changed(), 1u);
    const std::pair<int, TVector2> ranges[]
        = {{0, {0, 10}}, {1, {0, 33}}, {7, {70, 80}}, {8, {33, 66}}, {9, {66, 100}}};
    for (const auto& [layer, range] : ranges)
        EXPECT_EQ(record.fRange[layer], range) << layer;
    EXPECT_EQ(this->Taken(0.1f), "1");
}

TYPED_TEST(RangeMixTest, BypassesWithAnyControlAndGivesNothingWithoutOne)
{
    this->fRecord.fBypass = true;
    this->fControl->fColor = {0.1f, 0.2f, 0.3f, 0.4f};
    EXPECT_THAT(this->Shade(0.0f), IsColor(0.1f, 0.2f, 0.3f, 0.4f));
    this->fIn.fChannelMask = 5;
    const typename TestFixture::Made empty(TypeParam::kID);
    for (const bool bypass : {false, true}) {
        empty.Record().fBypass = bypass;
        EXPECT_FALSE(this->Shade(empty));
    }
    EXPECT_EQ(TakeReports(), std::vector<std::string>{"Bad Pointer"}); // of the bypass alone
    EXPECT_EQ(this->fIn.fChannelMask, 5u);
}

using Super_mixerTest = RangeMixTest<ColorMixer>;

TEST_F(Super_mixerTest, AveragesOverlapButItsAlphaAndHandsTheCallersFlagOn)
{
    fLayers[0]->fColor = {1, 0, 0, 0.25f};
    EXPECT_THAT(Shade(0.1f), IsColor(1, 0.5f, 0.5f, 1.75f));
    EXPECT_EQ(fControl->fLastFullArea, &fFullArea);
    EXPECT_TRUE(fFullArea); // as the layer left it
    Layer(0, FakeAll(kOutputSurface).Get());
    EXPECT_THAT(Shade(0.1f), IsColor(0.5f, 0.5f, 0.5f, 1.5f)); // one that answers nothing counts
    fRecord.fCombineMode = 0;
    EXPECT_THAT(Shade(0.1f), IsColor(0, 0, 0, 0.5f));
    EXPECT_FALSE(fFullArea);
    fRecord.fCombineMode = Code("MXMD");
    Plug(fRecord.fSubShader[0], FakeAll(kOutputSurface)); // never asked
    fMixer.Changed();
    EXPECT_FALSE(Shade(fMixer));
}

TEST_F(Super_mixerTest, KeepsALayersColourUnweightedAndAValueLayersValueWeighted)
{
    Fade(4);
    const Made silent(ColorMixer::kID);
    silent.Record().fCombineMode = 0; // black, with the alpha as it comes
    Layer(1, static_cast<IShellShader*>(silent.fWrapper.Get()));
    Layer(2, FakeValue(8).Get()); // 4 from here on
    fRecord.fRange[4] = {0, 8};
    EXPECT_THAT(Shade(0.25f), IsColor(5.5f, 5.5f, 5.5f, 0.5f + 0.5f + 0.5f + 1));
    EXPECT_EQ(Shade(2).fRed, 5.5f); // the control's own percentage was remembered
}

TEST_F(Super_mixerTest, AdditionWeighsTheAlphaAloneWithWhatTheLastMixLeft)
{
    Layer(8, FakeValue(0.25f).Get());
    Layer(9, FakeAll(kOutputSurface).Get());
    fLayers[7]->fColor = {1, 0.5f, 0, 1};
    fRecord.fCombineMode = Code("ADMD");
    EXPECT_THAT(Shade(0.0f), IsColor(8.25f, 7.75f, 7.25f, 8.5f)); // no mix yet: the whole alpha
    EXPECT_EQ(fControl->Calls(), 0);
    Fade(1);
    fRecord.fCombineMode = Code("MXMD");
    Shade(0.25f);
    fRecord.fCombineMode = Code("ADMD");
    EXPECT_THAT(Shade(0.0f), IsColor(8.25f, 7.75f, 7.25f, 4.5f));
    EXPECT_EQ(fLayers[7]->fLastFullArea, &fFullArea);
    fRecord.fSmooth = false;
    fRecord.fCombineMode = Code("MXMD");
    Shade(0.25f);
    fRecord.fCombineMode = Code("ADMD");
    EXPECT_THAT(Shade(0.0f), IsColor(8.25f, 7.75f, 7.25f, 8.5f)); // whole again
}

using Super_mixer_topTest = RangeMixTest<SurfaceMixer>;

TEST_F(Super_mixer_topTest, AveragesEveryChannelEachLayerFromTheDefaults)
{
    const Made bypassing(SurfaceMixer::kID); // writes a colour and the mask alone
    bypassing.Record().fBypass = true;
    Plug(bypassing.Record().fSubShader[0], FakeColor({0, 1, 0, 0}));
    bypassing.Changed();
    Layer(1, static_cast<IShellShader*>(bypassing.fWrapper.Get()));
    Layer(0, FakeAll().Get());
    EXPECT_THAT(Shade(0.1f), IsColor(0.375f, 0.875f, 0.375f, 0.25f));
    EXPECT_EQ(fResult.fThirdColor.fRed, 0.5f);
    EXPECT_EQ(fResult.fScalarA, 0.5f);
    EXPECT_EQ(fIn.fChannelMask, 2047u);
    Fade(1);
    EXPECT_THAT(Shade(0.25f), IsColor(0.375f, 0.375f, 0.375f, 0.25f));
    EXPECT_EQ(fResult.fThirdColor.fRed, 0.25f); // weighted twice
    EXPECT_EQ(fResult.fScalarB, 0.5f);
    EXPECT_TRUE(Shade(bypassing));
    EXPECT_EQ(fResult.fScalarB, 0.5f); // the caller's
    EXPECT_EQ(fIn.fChannelMask, 0u);
}

TEST_F(Super_mixer_topTest, ColourAndValueLayersRaiseTheColourAlone)
{
    Fade(3);
    Layer(0, FakeAll(kOutputColor | kOutputValue).Get()); // leaves alpha 0.25
    Layer(1, FakeValue(8).Get());                         // 4 with alpha 0.125; 8 from here on
    fRecord.fRange[3] = {7.5f, 9.5f};                     // half of it
    EXPECT_THAT(Shade(0.25f), IsColor(4.625f, 4.625f, 4.625f, 0.875f));
    ShadingOut cleared;
    cleared.Clear();
    EXPECT_TRUE(DiffersInColorAlone(fResult, cleared));
    EXPECT_THAT(Shade(0.5f), IsColor(0, 0, 0, 0)); // outside all ranges
    EXPECT_EQ(fIn.fChannelMask, 5u);
}

TEST_F(Super_mixer_topTest, AsksASurfaceControlForItsColourAndNeedsALayer)
{
    Plug(fRecord.fSubShader[0], FakeAll(kOutputSurface | kOutputValue));
    fMixer.Changed();
    EXPECT_EQ(Taken(0), "2");
    const Made bare(SurfaceMixer::kID);
    Plug(bare.Record().fSubShader[0], fControl);
    Plug(bare.Record().fSubShader[1], fControl); // the shift is no layer
    bare.Changed();
    fControl->fValueCalls = 0;
    EXPECT_FALSE(Shade(bare));
    EXPECT_THAT(fResult.fColor, IsColor(9, 9, 9, 0.5f));
    EXPECT_EQ(fControl->fValueCalls, 1); // read all the same
    for (int layer = 0; layer < 10; ++layer)
        PlugNoShader(fRecord.fSubShader[layer + 2]);
    fMixer.Changed();
    EXPECT_FALSE(Shade(fMixer)); // no layer any more
    EXPECT_THAT(fResult.fColor, IsColor(9, 9, 9, 0.5f));
}

} // namespace
