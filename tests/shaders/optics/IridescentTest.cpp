#include "shaders/optics/Iridescent.h"
#include "tests/support/FakeScene.h"
#include "tests/support/ShaderTest.h"
#include <functional>

namespace {

constexpr GUID kIridescentID = {0x95066A60, 0x9909, 0x11D7, {0xA9, 0x26, 0x54, 0x55, 0x43, 0x44, 0x52, 0x00}};

class IridescentTest : public ShaderTest {
protected:
    MadeShader<IridescentParams> fIridescent{kIridescentID};
    IridescentParams& fRecord = fIridescent.Record();

    IridescentTest() { fIridescent.Changed(); }

    TMCColorRGBA Shade()
    {
        TMCColorRGBA color{9, 9, 9, 0.125f}; // the alpha stays
        EXPECT_EQ(fIridescent->ShadeColor(color, fFullArea, fIn), 1.0f);
        return color;
    }
    TMCColorRGBA ShadeAt(double degrees)
    {
        const double angle = degrees * kRadiansPerDegree;
        fIn.fNormalGlobal
            = {static_cast<float>(2 * std::cos(angle)), 0, static_cast<float>(2 * std::sin(angle))};
        return Shade();
    }
    void ExpectAngle(double angle)
    {
        fRecord.fGrey = true;
        fRecord.fInvertGrey = !fRecord.fInvertGrey;
        const float grey = fRecord.fInvertGrey ? 1 - Shade().fGreen : Shade().fGreen;
        EXPECT_NEAR(grey * kPi, angle, 1e-3);
    }
};

TEST_F(IridescentTest, AddsTheBandsAroundTheAngle)
{
    EXPECT_THAT(ShadeAt(0), IsColor(0.5f, 0, 1, 0.125f)); // blue limited: band 1 has weight there too
    EXPECT_NEAR(ShadeAt(7.5).fRed, 0.5 * (1 - 3 * 7.5 * kRadiansPerDegree), 1e-6);
    const double beside = 1 - 3 * 15 * kRadiansPerDegree; // of a band 15 degrees away
    const TMCColorRGBA orange = ShadeAt(75);
    EXPECT_TRUE(orange.fRed == 1 && orange.fBlue == 0);
    EXPECT_NEAR(orange.fGreen, 0.5 + beside, 1e-6);
    fRecord.fBands[0].fColor = {0.5f, -2, 0, 1}; // no lower limit
    EXPECT_FLOAT_EQ(ShadeAt(0).fGreen, -2);
    fRecord.fBands[0].fWidth = 0; // with weight 1 everywhere
    EXPECT_THAT(ShadeAt(110), IsColor(1, 1, 1, 0.125f));
    fRecord.fSameWidth = false;
    EXPECT_THAT(ShadeAt(110), IsColor(0.5f, -2, 0, 0.125f));
}

TEST_F(IridescentTest, HoldsTheLastBandFromItsCentreOn)
{
    EXPECT_THAT(ShadeAt(110), IsColor(0, 0, 0, 0.125f));
    fRecord.fHoldLastBand = true;
    EXPECT_THAT(ShadeAt(110), IsColor(1, 0, 0, 0.125f));
    EXPECT_NEAR(ShadeAt(15).fRed, 0.5 * (1 - 3 * 15 * kRadiansPerDegree), 1e-6);
    fRecord.fBands[6].fCenter = 0;
    fRecord.fBands[0].fWidth = kInfinity; // leaves no weight to any band by itself
    EXPECT_THAT(ShadeAt(0), IsColor(1, 0, 0, 0.125f));
    fIn.fNormalGlobal = {};
    EXPECT_THAT(Shade(), IsColor(0, 0, 0, 0.125f)); // no angle, no band
}

TEST_F(IridescentTest, TheSubShaderOffsetsTheAngle)
{
    fIn.fNormalGlobal = {0, 1, 0};
    const auto plugged = FakeColor({0, 1, 0, 1});
    plugged->fValue = 0.25f;
    Plug(fRecord.fSubShader, plugged);
    for (const uint32_t other : {Code("SMMX"), 0, Code("shmx")}) {
        fRecord.fMixStyle = other;
        ExpectAngle(kHalfPi);
    }
    fRecord.fMixStyle = Code("SHMX");
    const struct {
        uint32_t kinds;
        float green;
        double offset;
    } kSamples[] = {
        {kOutputColor, 2, -0.5},                                              // above 1, and none before
        {kOutputColor | kOutputValue, 1, 0.09}, {kOutputColor, 2, 0.09},      // the last one
        {kOutputSurface | kOutputValue, 1, -0.25}, {kOutputSurface, 1, -0.5}, // not asked for its colour
        {kOutputColor, 2, -0.5}, {kOutputColor, 1 / 0.59f, 0.5},              // 1 isn't above 1
    };
    for (const auto& [kinds, green, offset] : kSamples) {
        plugged->fKinds = kinds;
        plugged->fColor.fGreen = green;
        fIridescent.Changed();
        ExpectAngle(kHalfPi + offset);
    }
    EXPECT_EQ(plugged->fLastFullArea, &fFullArea);
    fRecord.fSubShader = nullptr;
    fIridescent.Changed();
    ExpectAngle(kHalfPi - 0.5);
    fFullArea = true;
    Shade();
    EXPECT_FALSE(fFullArea);
    const auto noShader = fernwick::MakeCounted<FakeScene>();
    fRecord.fSubShader = static_cast<ITreeElement*>(noShader->fRoot);
    EXPECT_EQ(fIridescent.Changed(), kMCNoInterface);
    ExpectAngle(kHalfPi - 0.5);
    fRecord.fSubShader = nullptr;
    EXPECT_EQ(fIridescent.Changed(), MC_S_OK);
    fIn.fNormalGlobal = {};
    ExpectAngle(0); // no angle becomes 0, as one below 0 does
}

TEST_F(IridescentTest, TheReferenceIsTheFixedDirectionOrTheLastFoundElement)
{
    fRecord.fElevation = 30;
    fRecord.fAzimuth = 60;
    fIridescent.Changed();
    fIn.fNormalGlobal = {0.4330127f, -0.75f, 0.5f};
    ExpectAngle(0);

    const auto scene = fernwick::MakeCounted<FakeScene>();
    FakeElement& lamp = scene->Add("Lamp");
    const auto expectAngle = [&](double angle, TVector3 lampAt, std::vector<std::string> reports) {
        lamp.fTransform.fTranslation = lampAt;
        ExpectAngle(angle);
        EXPECT_EQ(TakeReports(), reports);
    };
    fIn.fInstance = static_cast<ITreeElement*>(scene->fRoot);
    fIn.fPointGlobal = {1, 1, 1};
    fRecord.fReferenceMode = Code("OBJT");
    expectAngle(0, {1, 1, 4}, {"objecttree"});
    fRecord.fObjectName = "Lamp";
    expectAngle(kPi / 3, {1, 1, 4}, {});
    fIn.fInstance = nullptr;
    expectAngle(kPi / 3, {9, 1, 1}, {"shadingIn.fInstance", "scene"});
    for (const uint32_t other : {Code("RFVT"), 0, Code("objt")}) {
        fRecord.fReferenceMode = other;
        expectAngle(kPi / 3, {9, 1, 1}, {});
    }
    fRecord.fAzimuth = 0; // the angles are turned into a direction by a change alone
    expectAngle(kPi / 3, {9, 1, 1}, {});
    fRecord.fAzimuth = 60;
    fIridescent.Changed();
    expectAngle(0, {9, 1, 1}, {});

    const TVector3 way(0x1.a099eep-1f, 0x1.ffb5e4p-1f, -0x1.dac958p-3f);
    fIn.fNormalGlobal = TVector3() - way; // rounding brings the cosine of these below -1
    fIn.fPointGlobal = {};
    fIn.fInstance = static_cast<ITreeElement*>(scene->fRoot);
    fRecord.fReferenceMode = Code("OBJT");
    expectAngle(kPi, way, {});
}

TEST_F(IridescentTest, SameParametersFieldByFieldAndFromBothSides)
{
    const auto same = [&](const std::function<void(IridescentParams&)>& change) {
        MadeShader<IridescentParams> other(kIridescentID);
        change(other.Record());
        const bool answer = fIridescent->SameParameters(&*other) != 0;
        EXPECT_EQ(other->SameParameters(&*fIridescent) != 0, answer);
        return answer;
    };
    for (const int band : {0, 3, 6}) {
        for (float IridescentBand::*const number : {&IridescentBand::fCenter, &IridescentBand::fWidth})
            for (const float sign : {1.0f, -1.0f})
                EXPECT_FALSE(same([&](IridescentParams& other) {
                    float& value = other.fBands[band].*number;
                    value = std::nextafter(value, sign * kInfinity); // exactly
                }));
        for (float TMCColorRGBA::*const channel :
            {&TMCColorRGBA::fRed, &TMCColorRGBA::fGreen, &TMCColorRGBA::fBlue, &TMCColorRGBA::fAlpha})
            EXPECT_EQ(same([&](IridescentParams& other) { other.fBands[band].fColor.*channel += 0.25f; }),
                channel == &TMCColorRGBA::fAlpha);
    }
    const auto plugged = FakeValue(1);
    for (TMCBool IridescentParams::*const flag : {&IridescentParams::fHoldLastBand,
             &IridescentParams::fSameWidth, &IridescentParams::fGrey, &IridescentParams::fInvertGrey})
        EXPECT_FALSE(same([&](IridescentParams& other) { other.*flag = !(other.*flag); }));
    for (float IridescentParams::*const angle : {&IridescentParams::fAzimuth, &IridescentParams::fElevation})
        EXPECT_FALSE(same([&](IridescentParams& other) { other.*angle = 1e-30f; }));
    EXPECT_FALSE(same([](IridescentParams& other) { other.fMixStyle = Code("SHMX"); }));
    EXPECT_FALSE(same([&](IridescentParams& other) { Plug(other.fSubShader, plugged); }));
    EXPECT_FALSE(same([](IridescentParams& other) { other.fObjectName = "Lamp"; }));
    EXPECT_TRUE(same([](IridescentParams& other) { other.fReferenceMode = Code("OBJT"); }));
}

} // namespace
