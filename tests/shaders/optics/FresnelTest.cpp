#include "shaders/optics/Fresnel.h"
#include "frame/TMCException.h"
#include "tests/support/FakeScene.h"
#include "tests/support/ShaderTest.h"
#include <algorithm>

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
    const auto plain = at(1), lower = at(0.5f), none = at(0), more = at(1.25f), less = at(0.8f);
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
    value->fKinds = kOutputVector;
    EXPECT_THAT(Shade(1), lower);
    fRecord.fMixStyle = 0;
    EXPECT_THAT(Shade(1), plain);
    fRecord.fSubShader = static_cast<ITreeElement*>(&fEye); // no shader
    EXPECT_EQ(fFresnel.Changed(), kMCNoInterface);
    fRecord.fSubShader = nullptr;
}

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

TEST_F(FresnelTest, SameParametersToleratesLessThanAMillionth)
{
    for (const auto field : {&Params::fIndex1Im, &Params::fTemperature})
        for (const float difference : {9e-7f, 1.1e-6f}) {
            MadeShader<Params> other(kTwinID);
            other.Record() = fRecord;
            fRecord.*field = 0;
            other.Record().*field = difference;
            EXPECT_EQ(fFresnel->SameParameters(&*other) != 0, difference < 1e-6f);
        }
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
    fRecord.fIndex2ReOffset = fRecord.fIndex2ImOffset = fRecord.fPermeability2Offset = 0.25f;
    EXPECT_THAT(notes(3, Code("N2rs")), shows(Code("N2Re"), 1.51673f + 0.25f));
    EXPECT_THAT(notes(3, Code("N2is")), shows(Code("N2Im"), 1e-5f + 0.25f));
    EXPECT_THAT(notes(3, Code("N2Ms")), shows(Code("N2Mr"), 1.25f));
    EXPECT_THAT(notes(3, Code("Diss")),
        ElementsAre(Pair(Code("CstR"), 1), Pair(Code("SnpV"), 0), Pair(Code("MinV"), -10000),
            Pair(Code("MAxV"), 10000), Pair(Code("MnDp"), -0.25f), Pair(Code("MxDp"), 0.25f)));

    for (const int32_t none : {31, 32, -1, INT32_MIN})
        EXPECT_EQ(notes(5, Code("PRS1"), none).size() + notes(5, Code("PRS2"), none).size(), 2u);
    EXPECT_EQ(notes(5, Code("PRS1"), 0).back().first, kPartRefresh);
    EXPECT_TRUE(fRecord.fIndex1Re == 1.33283f && fRecord.fPreset1 == 0);
    fRecord.fMode = kTransmittanceMode;
    notes(5, Code("PRS2"), 2);
    fRecord.fMode = kReflectanceMode;
    fRecord.fIndex2ReOffset = fRecord.fIndex2ImOffset = fRecord.fPermeability2Offset = 0.5f;
    notes(5, Code("PRS2"), 2); // the same row: what was seen of medium 1 is forgotten all the same
    EXPECT_TRUE(fRecord.fDispersion == 0.0089f && fRecord.fIndex2ImOffset == 0);
    EXPECT_NEAR(Shade(0), std::pow((1.51673 - 1.33283) / (1.51673 + 1.33283), 2), 1e-5);

    panel->fHasParts = false;
    EXPECT_TRUE(notes(5, Code("PRS2"), 9).empty() && notes(3, Code("N2rs")).empty());
    EXPECT_TRUE(notes(5, Code("N2rs")).empty() && notes(3, Code("PRS2"), 9).empty());
    const auto missing
        = testing::Throws<TMCException>(testing::Field(&TMCException::fErrorCode, kMCNoComponent));
    for (IMCUnknown* const noPart : {static_cast<IMCUnknown*>(static_cast<ITreeElement*>(&fEye)), {}})
        EXPECT_THAT([&] { exchanger.HandleEvent(0, noPart, nullptr); }, missing);
}

} // namespace
