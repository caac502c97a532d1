#include "shaders/layers/MultiPassControl.h"
#include "shaders/layers/MultiPassManager.h"
#include "tests/shaders/layers/LayerTest.h"

namespace {

constexpr GUID kManagerID = {0x80B31898, 0xD5AD, 0x4532, {0xA9, 0x11, 0xBE, 0x90, 0x60, 0x48, 0xD6, 0xF9}};
constexpr GUID kControlID = {0xFDCF5228, 0x1C6A, 0x463B, {0x98, 0xC9, 0x97, 0x65, 0x39, 0x78, 0x4E, 0xE9}};

/// A manager whose passes are red by their number.
class MultiPassTest : public ShaderTest {
protected:
    MadeShader<MultiPassManagerParams> fManager{kManagerID};
    MadeShader<MultiPassControlParams> fControl{kControlID};
    MCCountedPtr<FakeShader> fSelector = FakeValue(0);

    MultiPassTest()
    {
        for (int pass = 1; pass <= 10; ++pass)
            PlugInto(pass, FakeColor({static_cast<float>(pass), 0, 0, 1}).Get());
        PlugInto(0, fSelector.Get());
        fIn.fChannelMask = 5;
    }
    void PlugInto(int slot, IMCUnknown* shader)
    {
        fManager.Record().fSubShader[slot] = shader;
        EXPECT_EQ(fManager.Changed(), MC_S_OK);
    }
    ShadingOut Shade(float level, int32_t answer = 1)
    {
        fSelector->fValue = level;
        ShadingOut result;
        result.fColor.fRed = -1;
        result.fScalarD = 7;
        EXPECT_EQ(fManager->ShadeSurface(result, fIn), answer);
        return result;
    }
    float Level(float coverage = 1)
    {
        float value = 9;
        EXPECT_EQ(fControl->ShadeValue(value, fFullArea, fIn), coverage);
        return value;
    }
};

TEST_F(MultiPassTest, EachLevelOfTheControlIsTheMiddleOfItsPass)
{
    PlugInto(0, static_cast<IShellShader*>(fControl.fWrapper.Get()));
    EXPECT_EQ(Shade(0).fColor.fRed, 0); // no level: 0, and the control itself as the surface
    Plug(fControl.Record().fSubShader, FakeAll());
    fControl.Changed();
    int pass = 0;
    for (const int32_t level : {Code("LONE"), Code("LTWO"), Code("LTHR"), Code("LFOR"), Code("LFIV"),
             Code("LSIX"), Code("LSVN"), Code("LEGT"), Code("LNIN"), Code("LTEN")}) {
        ++pass;
        fControl.Record().fLevel = level;
        EXPECT_EQ(Level(), static_cast<float>((10 * pass - 5) / 100.0));
        EXPECT_FALSE(fFullArea);
        EXPECT_EQ(Shade(0).fColor.fRed, pass);
    }
    fControl.Record().fLevel = Code("lref");
    EXPECT_EQ(Level(), 0);
}

TEST_F(MultiPassTest, LevelsAtTheEndsOfThePasses)
{
    const std::pair<float, float> cases[] = {{1.03f, 10}, {std::nextafter(0.04f, 1.0f), 1}, {0.14f, 2},
        {0.44f, 4},                        // just below the end of the pass, which float sums would reach
        {0.04f, 0.04f}, {-0.15f, -0.15f}}; // pass 0: the selector itself, a grey
    for (const auto& [level, red] : cases)
        EXPECT_EQ(Shade(level).fColor.fRed, red) << level;
    for (const float level : {1.05f, -0.17f, 1e30f, -kInfinity, kNaN})
        EXPECT_EQ(Shade(level, 0).fColor.fRed, -1) << level;
}

TEST_F(MultiPassTest, EachRouteTellsWhatIsLeftOfTheCallersRecord)
{
    PlugInto(1, FakeAll(kOutputColor | kOutputValue).Get());
    PlugInto(2, FakeAll(kOutputValue).Get());
    PlugInto(3, FakeAll(kOutputVector).Get());
    const TMCColorRGBA colors[] = {{0.25f, 0.25f, 0.25f, 0.5f}, {0.5f, 0.5f, 0.5f, 0.5f}, {0, 0, 0, 1}};
    for (int pass = 1; pass <= 3; ++pass) {
        const ShadingOut result = Shade(static_cast<float>(pass) / 10);
        EXPECT_TRUE(result.fColor.Equals(colors[pass - 1])) << pass;
        EXPECT_TRUE(DiffersInColorAlone(result, ShadingOut()));
    }
    EXPECT_EQ(fIn.fChannelMask, 5u);
    PlugInto(4, FakeAll().Get());
    EXPECT_EQ(Shade(0.4f).fThirdColor.fRed, 1);
    EXPECT_EQ(fIn.fChannelMask, 2047u);
    const MadeShader<MultiPassManagerParams> silent(kManagerID); // a surface that touches nothing
    PlugInto(5, static_cast<IShellShader*>(silent.fWrapper.Get()));
    EXPECT_EQ(Shade(0.5f).fScalarD, 7);
}

TEST_F(MultiPassTest, SelectorAndReferenceAreAskedForColourThenValueThenSurface)
{
    fFullArea = true;
    EXPECT_EQ(Level(0), 9); // no reference: no level at all
    EXPECT_FALSE(fFullArea);
    const std::tuple<uint32_t, float, float> cases[]
        = {{kOutputSurface | kOutputColor | kOutputValue, 0.25f, 3}, {kOutputSurface | kOutputValue, 0.5f, 5},
            {kOutputSurface, 0.75f, 8}};
    for (const auto& [kinds, level, pass] : cases) {
        PlugInto(0, FakeAll(kinds).Get());
        Plug(fControl.Record().fSubShader, FakeAll(kinds));
        EXPECT_EQ(fControl.Changed(), MC_S_OK);
        EXPECT_EQ(Shade(0).fColor.fRed, pass);
        EXPECT_EQ(Level(), level);
        EXPECT_EQ(fIn.fChannelMask, 5u);
    }
    PlugInto(0, FakeAll(kOutputVector).Get());
    EXPECT_EQ(Shade(0, 0).fScalarD, 7);
    Plug(fControl.Record().fSubShader, FakeAll(kOutputVector));
    fControl.Changed();
    EXPECT_EQ(Level(), 0);
}

TEST_F(MultiPassTest, EmptiedSlotsGoOnAndAFailedQueryIsOneOrItsStatus)
{
    PlugInto(10, nullptr);
    PlugNoShader(fManager.Record().fSubShader[5]);
    EXPECT_EQ(fManager.Changed(), 1u);
    EXPECT_EQ(Shade(0.45f).fColor.fRed, 0);
    EXPECT_EQ(Shade(0.95f).fColor.fRed, 10);

    Plug(fControl.Record().fSubShader, FakeAll(kOutputValue));
    fControl.Changed();
    fControl.Record().fSubShader = nullptr;
    EXPECT_EQ(fControl.Changed(), MC_S_OK);
    EXPECT_EQ(Level(), 0.5f);
    EXPECT_TRUE(fFullArea); // as the reference left it
    PlugNoShader(fControl.Record().fSubShader);
    EXPECT_EQ(fControl.Changed(), Socket::kRefusal);
    EXPECT_EQ(Level(0), 9);
    for (SubShaderSlot& slot : fManager.Record().fSubShader) {
        PlugNoShader(slot);
        EXPECT_EQ(fManager.Changed(), 1u);
        slot = nullptr;
    }
    EXPECT_EQ(fManager.Changed(), MC_S_OK);
}

TEST_F(MultiPassTest, KeptShadersAreAskedForTheirKindsAnewAtTheChange)
{
    const auto pass = FakeAll(kOutputColor);
    PlugInto(3, pass.Get());
    Plug(fControl.Record().fSubShader, pass);
    fControl.Changed();
    fControl.Record().fSubShader = fManager.Record().fSubShader[3] = nullptr;
    pass->fKinds = kOutputValue;
    EXPECT_EQ(Shade(0.25f).fColor.fRed, 0.25f);
    EXPECT_EQ(Level(), 0.25f);
    fManager.Changed();
    fControl.Changed();
    EXPECT_EQ(Shade(0.25f).fColor.fRed, 0.5f);
    EXPECT_EQ(Level(), 0.5f);
    pass->fSilent = true;
    EXPECT_EQ(Level(), 9); // handed the caller's number, and it stays
    pass->fKinds = kOutputColor;
    fControl.Changed();
    EXPECT_EQ(Level(), 0.25f); // the colour before
}

TEST_F(MultiPassTest, TheSelectorsColourAndNumberStayInTheScratch)
{
    const auto selector = FakeColor({0.35f, 0.35f, 0.35f, 0.75f});
    const auto pass = FakeAll(kOutputColor);
    PlugInto(0, selector.Get());
    PlugInto(4, pass.Get());
    pass->fSilent = true;
    EXPECT_THAT(Shade(0).fColor, IsColor(0.35f, 0.35f, 0.35f, 0.75f));
    EXPECT_FALSE(selector->fHandedFullArea);
    EXPECT_TRUE(pass->fHandedFullArea); // as the selector left the same flag
    EXPECT_EQ(pass->fLastFullArea, selector->fLastFullArea);
    pass->fKinds = kOutputValue;
    fManager.Changed();
    EXPECT_THAT(Shade(0).fColor, IsColor(0.35f, 0.35f, 0.35f, 0.75f));
    selector->fKinds = kOutputValue;
    selector->fValue = 0.4f;
    fManager.Changed();
    EXPECT_EQ(Shade(0).fColor.fRed, 0.4f);
    selector->fSilent = true; // 0 in each sample anew: the selector itself
    EXPECT_EQ(Shade(0).fColor.fRed, 0);
}

TEST_F(MultiPassTest, LetsGoOfShadersBeforeWhatIsPluggedAndBackwards)
{
    LeavingOrder order;
    {
        const MadeShader<MultiPassManagerParams> manager(kManagerID);
        const MadeShader<MultiPassControlParams> control(kControlID);
        for (const int slot : {0, 1, 10})
            order.Plug(manager.Record().fSubShader[slot]);
        order.Plug(control.Record().fSubShader);
        manager.Changed();
        control.Changed();
    }
    EXPECT_EQ(order.Text(), "3s 3p 2s 1s 0s 2p 1p 0p ");
}

} // namespace
