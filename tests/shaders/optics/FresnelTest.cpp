#include "shaders/optics/Fresnel.h"
#include "frame/TMCException.h"
#include "tests/optics/Mark.h"
#include "tests/support/FakeScene.h"
#include "tests/support/ShaderTest.h"
#include <algorithm>
#include <functional>

namespace {

using testing::ElementsAre;
using testing::Pair;
using Params = FresnelParams;

constexpr GUID kFresnelID = {0xBE9FA2A5, 0x5FBE, 0x4558, {0x80, 0x09, 0x7A, 0x1F, 0x1D, 0x7A, 0x68, 0x02}};
constexpr GUID kTwinID = {0xC21E8AD4, 0x1898, 0x4C50, {0x97, 0xF6, 0x81, 0x94, 0xF6, 0x83, 0x0F, 0x4C}};

class FresnelTest : public ShaderTest {
protected:
    MCCountedPtr<FakeScene> fScene = fernwick::MakeCounted<FakeScene>();
    FakeElement& fObject = fScene->Add("Object");
    FakeElement& fEye = fScene->Add("Eye");
    MadeShader<Params> fFresnel{kFresnelID};
    Params& fRecord = fFresnel.Record();

    FresnelTest()
    {
        fRecord.fCameraName = fScene->fCameraName = "Eye";
        fIn.fInstance = static_cast<ITreeElement*>(&fObject);
    }
    TMCColorRGBA Color(const MadeShader<Params>& shader)
    {
        TMCColorRGBA color{9, 9, 9, 9};
        EXPECT_EQ(shader->ShadeColor(color, fFullArea, fIn), 1.0f);
        return color;
    }
    /// The grey level after a change when the eye stands at an angle from the normal; neither has length 1.
    float Shade(float angle)
    {
        EXPECT_EQ(fFresnel.Changed(), MC_S_OK);
        return Look(angle);
    }
    /// The same without a change.
    float Look(float angle)
    {
        fIn.fPointGlobal = {1, 2, 3};
        fIn.fNormalGlobal = {0, 0, 0.5f};
        fEye.fTransform.fTranslation = {7 * std::sin(angle) + 1, 2, 7 * std::cos(angle) + 3};
        const TMCColorRGBA color = Color(fFresnel);
        EXPECT_THAT(color, IsColor(color.fRed, color.fRed, color.fRed, 1));
        return color.fRed;
    }
    /// Whether the next change derives this colour.
    bool Rewrites(TMCColorRGBA Params::*color)
    {
        (fRecord.*color).fRed = -7;
        fFresnel.Changed();
        return (fRecord.*color).fRed != -7;
    }
};

TEST_F(FresnelTest, DefaultGlass)
{
    EXPECT_NEAR(Shade(0), 0.04216, 2e-5);
    EXPECT_FALSE(fFullArea);
    EXPECT_NEAR(Shade(1.5f), (0.7804 + 0.5635) / 2, 2e-4);
    EXPECT_NEAR(Shade(2), 1, 3.5e-5) << "from behind, total internal reflection";
    fRecord.fPolarization = 300;
    EXPECT_EQ(Shade(1.5f), 1) << "clamped";
    fRecord.fPolarization = -300;
    EXPECT_EQ(Shade(1.5f), 0) << "at both ends";
    fRecord.fMode = kTransmittanceMode;
    fRecord.fPermeability2 = 2;
    const float behind = Shade(3.1415f);
    fIn.fPointGlobal = {}; // rounding brings the radicand of these opposite vectors below 0
    fIn.fNormalGlobal = {0.2f, 0.3f, 0.7f};
    fEye.fTransform.fTranslation = {-0.2f, -0.3f, -0.7f};
    EXPECT_NEAR(Color(fFresnel).fRed, behind, 1e-4);
}

TEST_F(FresnelTest, AChangeOfModeOrOfLessThanAMillionthFillsNoTable)
{
    fFresnel.Changed();
    fRecord.fMode = kTransmittanceMode;
    for (const float index : {0.0f, 5e-7f, 9.9e-7f, 1.1e-6f}) { // each from what was last worked from
        fRecord.fIndex1Im = index;
        EXPECT_NEAR(Shade(0), index > 1e-6f ? 0.95784 : 0, 2e-5);
    }
    for (int32_t Params::*preset : {&Params::fPreset1, &Params::fPreset2}) {
        const int32_t row = std::exchange(fRecord.*preset, 9);
        Shade(0);
        EXPECT_EQ(fRecord.*preset, row) << "found anew";
    }
}

TEST_F(FresnelTest, EachNumberIsRememberedAsItself)
{
    float number = 1;
    for (const auto field : {&Params::fIndex1Re, &Params::fIndex1Im, &Params::fIndex2Re, &Params::fIndex2Im,
             &Params::fPermeability1, &Params::fPermeability2, &Params::fPolarization, &Params::fDispersion})
        fRecord.*field = number += 0.25f;
    fFresnel.Changed();
    for (const auto offset :
        {&Params::fIndex2ReOffset, &Params::fIndex2ImOffset, &Params::fPermeability2Offset})
        fRecord.*offset = number += 0.25f;
    fFresnel.Changed();
    fRecord.fMode = kTransmittanceMode;
    EXPECT_EQ(Shade(0), 0) << "nothing but the mode has changed, which fills no table";
}

TEST_F(FresnelTest, AFineAdjustmentCountsFromTheLastValueSet)
{
    for (const auto& [value, offset] : {std::pair{&Params::fIndex2Re, &Params::fIndex2ReOffset},
             {&Params::fIndex2Im, &Params::fIndex2ImOffset},
             {&Params::fPermeability2, &Params::fPermeability2Offset}})
        for (const auto& [set, setOffset, expected] :
            {Float3{1.25f, 0.5f, 1.25f}, {1.25f, 0.25f, 1.5f}, {1.5f, 0.5f, 1.75f}, {2, 0.75f, 2}}) {
            fRecord.*value = set;
            fRecord.*offset = setOffset;
            fFresnel.Changed();
            EXPECT_EQ(fRecord.*value, expected);
        }
    fRecord = {};
    Shade(0);
    fRecord.fIndex2ReOffset = 0.5f;
    EXPECT_NEAR(Shade(0), std::pow(1.01673 / 3.01673, 2), 1e-4) << "before the tables are filled";
}

TEST_F(FresnelTest, AnIlluminantIsTypedOrChosen)
{
    const auto change = [&](int32_t preset, float whiteX, float temperature, int32_t presetAfter) {
        fRecord.fIlluminantPreset = preset;
        const bool derives = Rewrites(&Params::fIlluminantColor);
        EXPECT_EQ(fRecord.fIlluminantPreset, presetAfter);
        EXPECT_NEAR(fRecord.fWhiteX, whiteX, 1e-4);
        EXPECT_NEAR(fRecord.fTemperature, temperature, 1);
        return derives;
    };
    EXPECT_TRUE(change(8, 0.3160f, 6288.4f, 8));
    fRecord.fTemperature = 6500;
    EXPECT_TRUE(change(8, 0.3349f, 6500, 15)) << "no daylight in it";
    fRecord.fTemperature = 5000;
    EXPECT_TRUE(change(14, 0.2876f, 8622.4f, 14)) << "a preset chosen in the same change wins";
    const TMCColorRGBA& shown = fRecord.fIlluminantColor;
    EXPECT_TRUE(std::fabs(shown.fRed - 0.8283f) < 1e-4f && std::fabs(shown.fGreen - 0.90066f) < 1e-4f
        && shown.fBlue > 0.9999f);
    for (const int32_t preset : {15, -1, 16, INT32_MIN, INT32_MAX, 0}) {
        fRecord.fWavelength += 1;
        EXPECT_FALSE(change(preset, 0.2876f, 8622.4f, preset)) << "no row";
        MadeShader<Params> fresh(kFresnelID); // whatever the first record
        fresh.Record().fIlluminantPreset = preset;
        EXPECT_TRUE(fresh.Changed() == MC_S_OK && fresh.Record().fWavelengthColor.fRed > 0.1f);
    }
    EXPECT_FALSE(change(1, 0.2876f, 8622.4f, 1)) << "kept: even a row is lost behind a preset that is none";
    EXPECT_TRUE(change(14, 0.2876f, 8622.4f, 14));

    fRecord.fTemperature = 1;
    for (const float temperature : {1.0f, std::nextafter(1.0f, 2.0f), 1.0f, 1.0f}) { // each bit of it counts
        const bool typed = fRecord.fTemperature != temperature || fRecord.fIlluminantPreset == 14;
        fRecord.fTemperature = temperature;
        fRecord.fPolarization += 1; // which alone derives no illuminant
        EXPECT_EQ(Rewrites(&Params::fIlluminantColor), typed) << temperature;
        EXPECT_EQ(fRecord.fIlluminantPreset, 15);
    }
}

TEST_F(FresnelTest, TheWavelengthsColourFollowsStepsOfAThousandthNanometre)
{
    const auto rewrites = [&] { return Rewrites(&Params::fWavelengthColor); };
    EXPECT_TRUE(rewrites());
    const auto [red, green, blue] = fRecord.fWavelengthLinear;
    EXPECT_TRUE(red == 1 && std::fabs(green - 0.48011f) < 1e-4f && std::fabs(blue - 0.14204f) < 1e-4f);
    EXPECT_FLOAT_EQ(fRecord.fWavelengthColor.fGreen, 1.055f * std::pow(green, 1 / 2.4f) - 0.055f);
    for (const float step : {0.0f, 0.0007f, 0.0007f, 0.0011f}) { // each from the one before
        fRecord.fWavelength += step;
        EXPECT_EQ(rewrites(), step > 0.001f);
    }
    fRecord.fTemperature = std::nextafter(fRecord.fTemperature, 0.0f);
    EXPECT_TRUE(rewrites());
    fRecord.fColored = true;
    EXPECT_TRUE(rewrites());
    for (const float wavelength : {450.0f, 530.0f, 570.0f, 620.0f, 825.0f}) {
        fRecord.fWavelength = wavelength;
        fFresnel.Changed();
        fIn.fNormalGlobal = fEye.fTransform.fTranslation = {0, 0, 1};
        const TMCColorRGBA color = Color(fFresnel);
        const auto [lo, hi] = std::minmax({color.fRed, color.fGreen, color.fBlue});
        EXPECT_NEAR((lo + hi) / 2, 0.0425, 2e-3) << "the value as lightness";
        const auto [r, g, b] = fRecord.fWavelengthLinear;
        const double lightness = 1.16 * std::cbrt(0.212656 * r + 0.715158 * g + 0.072186 * b) - 0.16;
        EXPECT_NEAR((hi - lo) / (hi + lo), std::max(lightness, 0.0), 5e-3) << "the saturation";
        EXPECT_TRUE(color.fAlpha == 1 && (lightness > 0.1 || wavelength > 800)) << wavelength;
    }
}

TEST_F(FresnelTest, TheSubShaderOffsetsTheAngle)
{
    const auto at = [&](float angle) { return testing::FloatNear(Shade(angle), 2e-4f); };
    const auto plain = at(1), lower = at(0.5f), none = at(0), more = at(1.25f), less = at(0.8f),
               most = at(1.5f);
    fRecord.fMixStyle = Code("SHMX");
    EXPECT_THAT(Shade(1), lower) << "an empty slot gives 0";
    EXPECT_THAT(Shade(0.3f), none);
    for (const uint32_t kinds : {4, 16, 6}) {
        const auto color = FakeColor({0.5f, 0.25f, 0.0227f, 1}, kinds); // 0.3
        Plug(fRecord.fSubShader, color);
        EXPECT_THAT(Shade(1), less);
        EXPECT_EQ(color->fLastFullArea, &fFullArea);
    }
    const auto value = FakeValue(0.75f);
    Plug(fRecord.fSubShader, value);
    for (const float number : {0.75f, 1.5f, 1.5f, kNaN}) { // above 1 the last one counts
        value->fValue = number;
        EXPECT_THAT(Shade(1), std::isnan(number) ? none : more);
    }
    value->fValue = 1;
    EXPECT_THAT(Shade(1), most) << "1 isn't above 1";
    value->fKinds = kOutputVector;
    EXPECT_THAT(Shade(1), lower);
    fRecord.fMixStyle = 0;
    EXPECT_THAT(Shade(1), plain);
    fRecord.fMixStyle = Code("SHMX");
    fRecord.fSubShader = static_cast<ITreeElement*>(&fEye); // no shader
    for (const float index : {1.0f, 1.1f, 1.1f}) {          // whether there is work to do or not
        fRecord.fIndex1Re = index;
        EXPECT_EQ(fFresnel.Changed(), kMCNoInterface);
    }
    fRecord.fSubShader = nullptr;
}

TEST_F(FresnelTest, ASampleReadsRawWhatItWeighsAndAChangeDerivesTheRest)
{
    const float before = Shade(1.5f);
    const auto slot = FakeValue(1);
    fRecord.fIndex1Re = 1.2f;
    fRecord.fDispersion = 2;
    fRecord.fWavelength = 400;
    fRecord.fIndex2ReOffset = 1;
    fRecord.fIlluminantPreset = 3;
    Plug(fRecord.fSubShader, slot);
    EXPECT_EQ(Look(1.5f), before);
    fRecord.fPolarization = 0;
    EXPECT_NEAR(Look(1.5f), 0.5635, 2e-4);
    fRecord.fPolarization = 100;
    EXPECT_NEAR(Look(1.5f), 0.7804, 2e-4);
    for (const uint32_t mode : {kTransmittanceMode, 0u}) { // never filled; none
        fRecord.fMode = mode;
        EXPECT_EQ(Look(1.5f), 0);
    }
    fRecord.fMode = kReflectanceMode;
    const float there = Look(1);
    fRecord.fMixStyle = Code("SHMX");
    EXPECT_NEAR(Look(1.5f), there, 2e-4) << "the slot isn't connected yet";
    fFresnel.Changed();
    slot->fKinds = kOutputColor; // noticed with the next change
    Look(1.5f);
    EXPECT_EQ(slot->fValueCalls, 1);
    EXPECT_EQ(slot->fColorCalls, 0);
    fRecord.fSubShader = nullptr;
    Look(1.5f);
    EXPECT_EQ(slot->fValueCalls, 2);
    fRecord.fColored = true;
    fIn.fNormalGlobal = fEye.fTransform.fTranslation = {0, 0, 1};
    const TMCColorRGBA color = Color(fFresnel);
    EXPECT_NE(color.fRed, color.fBlue);
    fFresnel.Changed();
}

#ifndef _WIN32 // the bits are those of the C library's maths
TEST_F(FresnelTest, KeepsItsBits)
{
    std::vector<float> shades;
    for (int i = 0; i < 400; ++i) {
        const float turn = static_cast<float>(i) * 0.37f;
        fIn.fPointGlobal = {turn, -0.3f * turn, 1.7f};
        fIn.fNormalGlobal = {std::sin(turn), 0.7f, std::cos(1.3f * turn)};
        fEye.fTransform.fTranslation = {5 * std::cos(turn), 3.1f, -turn};
        if (i % 100 == 0) {
            fRecord.fWavelength = static_cast<float>(430 + i / 2);
            fRecord.fIlluminantPreset = 5 + i / 100;
            fRecord.fColored = i == 300;
            fFresnel.Changed();
            shades.insert(shades.end(), {fRecord.fWhiteX, fRecord.fWhiteY, fRecord.fTemperature});
            for (const TMCColorRGBA& color : {fRecord.fWavelengthColor, fRecord.fIlluminantColor})
                shades.insert(shades.end(), {color.fRed, color.fGreen, color.fBlue});
        }
        const TMCColorRGBA color = Color(fFresnel);
        shades.insert(shades.end(), {color.fRed, color.fGreen, color.fBlue});
    }
    EXPECT_EQ(Mark(shades), 3686011151u);
}
#endif

TEST_F(FresnelTest, LooksFromTheRenderingCameraANamedElementOrAFixedPoint)
{
    for (const char* name : {"", "Rendering Camera"}) {
        MadeShader<Params> fresh(kTwinID);
        const auto reports = [&] { return Color(fresh), TakeReports(); };
        fresh.Record().fCameraName = name;
        fIn.fInstance = nullptr;
        EXPECT_THAT(reports(), ElementsAre("shadingIn.fInstance", "scene", "objecttree"));
        fIn.fInstance = static_cast<ITreeElement*>(&fObject);
        fScene->fHasRenderingModule = false;
        EXPECT_THAT(reports(), ElementsAre("renderingModule", "objecttree"));
        fScene->fHasRenderingModule = true;
        EXPECT_TRUE(reports().empty());
        EXPECT_TRUE(fresh.Record().fCameraName == std::string_view("Eye"));
        fresh.Record().fCameraName = name;
        EXPECT_THAT(reports(), ElementsAre("objecttree")) << "the name is fetched once";
    }
    EXPECT_GT(Shade(1.5f), Shade(0) + 0.5f) << "a moved element";
    fEye.fTransform.fTranslation = {30.46f, 30.46f, 31.2f};
    fIn.fNormalGlobal = {-1, 0.2f, 0.8f};
    const float expected = Color(fFresnel).fRed;
    fObject.fIsElement = false;
    EXPECT_EQ(Color(fFresnel).fRed, expected);
    EXPECT_THAT(TakeReports(), ElementsAre("objecttree"));
}

TEST_F(FresnelTest, SameParametersFieldByFieldAndFromBothSides)
{
    const auto same = [&](const std::function<void(Params&)>& change) {
        MadeShader<Params> other(kTwinID);
        other.Record() = fRecord;
        change(other.Record());
        const bool answer = fFresnel->SameParameters(&*other) != 0;
        EXPECT_EQ(other->SameParameters(&*fFresnel) != 0, answer);
        return answer;
    };
    for (const auto field : {&Params::fIndex1Re, &Params::fIndex1Im, &Params::fIndex2Re, &Params::fIndex2Im,
             &Params::fPermeability1, &Params::fPermeability2, &Params::fPolarization,
             &Params::fIndex2ReOffset, &Params::fIndex2ImOffset, &Params::fPermeability2Offset,
             &Params::fWavelength, &Params::fDispersion, &Params::fIndex2ReAtWavelength,
             &Params::fIndex2ImAtWavelength, &Params::fTemperature}) {
        fRecord.*field = 0;
        for (const float difference : {9e-7f, 1.1e-6f, kNaN})
            EXPECT_EQ(same([&](Params& other) { other.*field = difference; }), difference < 1e-6f);
    }
    const auto plugged = FakeValue(1);
    EXPECT_FALSE(same([](Params& other) { other.fCameraName = "Ey"; }));
    EXPECT_FALSE(same([&](Params& other) { Plug(other.fSubShader, plugged); }));
    EXPECT_FALSE(same([](Params& other) { other.fMixStyle = Code("SHMX"); }));
    EXPECT_FALSE(same([](Params& other) { other.fMode = kTransmittanceMode; }));
    EXPECT_FALSE(same([](Params& other) { other.fPreset1 = 4; }));
    EXPECT_FALSE(same([](Params& other) { other.fIlluminantPreset = 4; }));
    EXPECT_FALSE(same([](Params& other) { other.fColored = true; }));
    EXPECT_TRUE(same([](Params& other) {
        other.fPreset2 = 4;
        other.fWavelengthColor = other.fIlluminantColor = {1, 2, 3, 4};
        other.fWavelengthLinear = {1, 2, 3};
        other.fWhiteX = other.fWhiteY = 0.5f;
    }));
}

TEST_F(FresnelTest, SurvivesAnyNumber)
{
    const auto numbers = (sizeof(Params) - 296) / sizeof(float); // from fIndex1Re on
    for (size_t field = 0; field < numbers; ++field)
        for (const float number : {kNaN, kInfinity, -1e30f, 0.0f, -1.0f}) {
            MadeShader<Params> odd(kFresnelID);
            std::memcpy(&odd.Record().fIndex1Re + field, &number, sizeof number);
            odd.Changed();
            Color(odd);
        }
}

/// A panel that is each of its parts and notes what they are asked and told.
class FakePanel final : public fernwick::Component<IMFPart, IID_IMFPart> {
public:
    uint32_t fID = 0;
    int32_t fChoice = kNoPreset;
    bool fHasParts = true;
    std::vector<std::pair<uint32_t, float>> fNotes;

    void SetPartValue(uint32_t id, uint32_t value) override { fNotes.emplace_back(id, value); }
    uint32_t GetPartID() override { return fID; }
    void FindChildPart(uint32_t id, IMFPart** out) override
    {
        fNotes.emplace_back(id, 0);
        if (fHasParts)
            QueryInterface(IID_IMFPart, reinterpret_cast<void**>(out));
    }
    void GetValue(void* value, uint32_t) override { std::memcpy(value, &fChoice, sizeof fChoice); }
    void SetValue(const void* value, uint32_t type) override
    {
        fNotes.emplace_back(type,
            type == Code("re32") ? *static_cast<const float*>(value) : *static_cast<const bool*>(value));
    }
    void SetAttribute(IMFAttribute& attribute) override
    {
        SetValue(attribute.GetConstValuePointer(), attribute.GetAttributeType());
        fNotes.back().first = attribute.GetAttributeID();
    }
};

TEST_F(FresnelTest, ServesThePanel)
{
    const auto panel = fernwick::MakeCounted<FakePanel>();
    IExDataExchanger& exchanger = fFresnel.fWrapper->Exchanger();
    const auto notes = [&](uint32_t event, uint32_t id, int32_t choice = kNoPreset) {
        panel->fID = id;
        panel->fChoice = choice;
        panel->fNotes.clear();
        EXPECT_EQ(exchanger.HandleEvent(event, static_cast<IMCUnknown*>(panel.Get()), nullptr), 0);
        EXPECT_EQ(panel->fNotes.at(0).first, Code("NTOP"));
        return std::vector(panel->fNotes.begin() + 1, panel->fNotes.end());
    };
    const auto shows = [](int32_t part, float number) {
        return ElementsAre(Pair(part, 0), Pair(Code("re32"), number), Pair(Code("Rfsh"), 1));
    };
    fFresnel.Changed();
    for (const float offset : {0.25f, 0.5f}) { // each from the value before any of them
        fRecord.fIndex2ReOffset = fRecord.fIndex2ImOffset = fRecord.fPermeability2Offset = offset;
        EXPECT_THAT(notes(3, Code("N2rs")), shows(Code("N2Re"), 1.51673f + offset));
        EXPECT_THAT(notes(3, Code("N2is")), shows(Code("N2Im"), 1e-5f + offset));
        EXPECT_THAT(notes(3, Code("N2Ms")), shows(Code("N2Mr"), 1 + offset));
    }
    EXPECT_THAT(notes(3, Code("Diss")),
        ElementsAre(Pair(Code("CstR"), 1), Pair(Code("SnpV"), 0), Pair(Code("MinV"), -10000),
            Pair(Code("MAxV"), 10000), Pair(Code("MnDp"), -0.25f), Pair(Code("MxDp"), 0.25f)));

    for (const int32_t none : {31, 32, -1, INT32_MIN})
        EXPECT_EQ(notes(5, Code("PRS1"), none).size() + notes(5, Code("PRS2"), none).size(), 2u);
    const auto choose = [&](const char(&list)[5], int32_t row) {
        EXPECT_THAT(notes(5, Code(list), row), ElementsAre(Pair(Code(list), 0), Pair(kPartRefresh, 1)));
    };
    choose("PRS1", 12);
    EXPECT_TRUE(fRecord.fIndex1Re == 2.93f && fRecord.fIndex1Im == 2 && fRecord.fPermeability1 == 300);
    EXPECT_TRUE(fRecord.fPreset1 == 12 && fRecord.fDispersion == 0.017f);
    choose("PRS2", 23);
    EXPECT_TRUE(
        fRecord.fIndex2Re == 1.39f && fRecord.fIndex2Im == 7.1f && fRecord.fPermeability2 == 4.000022f);
    EXPECT_TRUE(fRecord.fPreset2 == 23 && fRecord.fDispersion == -1.182f && fRecord.fPreset1 == 12);
    choose("PRS1", 30);
    choose("PRS2", 30);
    EXPECT_TRUE(fRecord.fPreset1 == 0 && fRecord.fPreset2 == 0) << "found anew, as in a change";

    // The same row again works anew: what was seen of medium 1 is forgotten, whichever medium the list is of.
    const auto share = [](double index1) { return std::pow((1.51673 - index1) / (1.51673 + index1), 2); };
    choose("PRS1", 1);
    choose("PRS2", 2);
    fRecord.fMode = kTransmittanceMode;
    choose("PRS1", 1);
    EXPECT_NEAR(Shade(0), 1 - share(1.00027), 1e-5);
    choose("PRS1", 0);
    fRecord.fMode = kReflectanceMode;
    fRecord.fIndex2ReOffset = fRecord.fIndex2ImOffset = fRecord.fPermeability2Offset = 0.5f;
    choose("PRS2", 2);
    EXPECT_TRUE(
        fRecord.fIndex2ReOffset == 0 && fRecord.fIndex2ImOffset == 0 && fRecord.fPermeability2Offset == 0);
    EXPECT_NEAR(Shade(0), share(1.33283), 1e-5);
    fRecord.fIndex1Re = 1.2f; // of no row, so there is nothing to forget
    fFresnel.Changed();
    fRecord.fMode = kTransmittanceMode;
    choose("PRS2", 2);
    EXPECT_NEAR(Shade(0), 1 - share(1.33283), 1e-5) << "as it was";

    panel->fHasParts = false;
    EXPECT_TRUE(notes(5, Code("PRS2"), 9).empty() && notes(3, Code("N2rs")).empty());
    EXPECT_TRUE(notes(5, Code("N2rs")).empty() && notes(3, Code("PRS2"), 9).empty());
    const auto missing
        = testing::Throws<TMCException>(testing::Field(&TMCException::fErrorCode, kMCNoComponent));
    for (IMCUnknown* const noPart : {static_cast<IMCUnknown*>(static_cast<ITreeElement*>(&fEye)), {}})
        EXPECT_THAT([&] { exchanger.HandleEvent(0, noPart, nullptr); }, missing);
}

} // namespace
