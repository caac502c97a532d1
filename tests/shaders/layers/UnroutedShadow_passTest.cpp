#include "host/library/Services.h"
#include "shaders/layers/Shadow_pass.h"
#include "tests/shaders/layers/LayerTest.h"

namespace {

/// The pack is linked in: its services are the test's own.
class Shadow_passTest : public ShaderTest {
protected:
    fernwick::Utilities fUtilities;
    Shadow_pass* fPass = nullptr;
    Shadow_passParams* fRecord = nullptr;

    Shadow_passTest()
    {
        gMemoryUtilities = &fUtilities.Memory();
        gDebugUtilities = &fUtilities.Debug();
        fPass = new Shadow_pass;
        fRecord = static_cast<Shadow_passParams*>(fPass->GetExtensionDataBuffer());
        fIn.fChannelMask = 5;
    }
    ~Shadow_passTest() override
    {
        EXPECT_EQ(fPass->Release(), 0u);
        EXPECT_EQ(fUtilities.Memory().LiveBlocks(), 0);
        gMemoryUtilities = nullptr;
        gDebugUtilities = nullptr;
    }
    ShadingOut Shade(int32_t answer = 1)
    {
        ShadingOut result;
        result.fColor = {9, 9, 9, 9};
        result.fScalarD = 7;
        EXPECT_EQ(fPass->ShadeSurface(result, fIn), answer);
        return result;
    }
    ShadingOut ShadePlugged(uint32_t kinds)
    {
        Plug(fRecord->fSubShader, FakeAll(kinds));
        EXPECT_EQ(fPass->ExtensionDataChanged(), MC_S_OK);
        return Shade();
    }
};

TEST_F(Shadow_passTest, PassesASurfaceOrWritesTheColourOfTheCallersRecord)
{
    EXPECT_THAT(Shade().fColor, IsColor(9, 9, 9, 9));                             // an empty slot is no error
    EXPECT_THAT(ShadePlugged(kOutputValue).fColor, IsColor(0.5f, 0.5f, 0.5f, 0)); // no colour so far
    EXPECT_THAT(ShadePlugged(kOutputColor | kOutputValue).fColor, IsColor(0.25f, 0.25f, 0.25f, 0.5f));
    EXPECT_THAT(ShadePlugged(kOutputValue).fColor, IsColor(0.5f, 0.5f, 0.5f, 0.5f));
    fRecord->fSubShader = nullptr; // still in use
    EXPECT_EQ(fPass->ExtensionDataChanged(), MC_S_OK);
    EXPECT_EQ(Shade().fColor.fRed, 0.5f);
    EXPECT_EQ(Shade().fScalarD, 7);
    EXPECT_EQ(fIn.fChannelMask, 5u);
    EXPECT_EQ(ShadePlugged(kOutputSurface | kOutputColor).fScalarD, 0);
    EXPECT_EQ(fIn.fChannelMask, 2047u);

    fRecord->fSuppress = true;
    EXPECT_THAT(Shade(0).fColor, IsColor(9, 9, 9, 0));
    EXPECT_EQ(Shade(0).fScalarD, 7);
    fRecord->fSuppress = false;
    PlugNoShader(fRecord->fSubShader);
    EXPECT_EQ(fPass->ExtensionDataChanged(), 1u);
    EXPECT_EQ(Shade().fColor.fRed, 9);
}

TEST_F(Shadow_passTest, IsASurfaceAndAsksAKeptShaderForItsKindsAnew)
{
    EXPECT_EQ(fPass->GetOutputKinds(), kOutputSurface);
    const auto shader = FakeAll();
    shader->fSilent = true;
    Plug(fRecord->fSubShader, shader);
    for (const uint32_t kinds : {kOutputColor, kOutputValue, kOutputColor}) {
        shader->fKinds = kinds;
        fPass->ExtensionDataChanged();
        EXPECT_THAT(Shade().fColor, IsColor(0, 0, 0, 0)); // both begin with 0
    }
    shader->fSilent = false;
    fRecord->fSubShader = nullptr;
    shader->fKinds = kOutputValue;
    EXPECT_EQ(Shade().fColor.fRed, 0.25f);
    EXPECT_FALSE(shader->fHandedFullArea);
    EXPECT_EQ(fPass->ExtensionDataChanged(), MC_S_OK);
    EXPECT_EQ(Shade().fColor.fRed, 0.5f);
    EXPECT_FALSE(shader->fHandedFullArea);
    shader->fKinds = kOutputColor;
    fPass->ExtensionDataChanged();
    shader->fSilent = true;
    EXPECT_THAT(
        Shade().fColor, IsColor(0.5f, 0.5f, 0.5f, 0.5f)); // the grey of the value, with the colour's alpha

    LeavingOrder order;
    auto* const other = new Shadow_pass;
    order.Plug(static_cast<Shadow_passParams*>(other->GetExtensionDataBuffer())->fSubShader);
    other->ExtensionDataChanged();
    other->Release();
    EXPECT_EQ(order.Text(), "0s 0p ");
}

} // namespace
