#include "host/parameters/FieldValue.h"
#include "tests/frame/AnyShader.h"
#include "tests/support/FakeScene.h"
#include <cstring>
#include <sstream>

// Records that were saved and read back: the head of a text in one holds what was another process's table of
// operations, and counts that nobody vouches for.

namespace {

using namespace fernwick;

using Bytes = std::vector<unsigned char>;

/// How a test fills a record's texts: with names of elements, or not at all.
enum class Texts { kNames, kDefaults };

std::string NameOf(const Field& field) { return "Element of " + field.fName; }

class SavedRecordsTest : public ShaderTest, public testing::WithParamInterface<const char*> {
protected:
    const ParameterTable& fTable = *FindClass(GetParam());
    FakeScene fScene;

    SavedRecordsTest()
    {
        float place = 1;
        for (const std::string& name : {std::string("Shaded"), fScene.fCameraName})
            Put(name, place++);
        for (const Field* const text : TextFields())
            Put(NameOf(*text), place++);
    }

    std::vector<const Field*> TextFields() const
    {
        std::vector<const Field*> texts;
        for (const Field& field : fTable.fFields)
            if (field.fType == FieldType::kString)
                texts.push_back(&field);
        return texts;
    }

    /// A shader that asks for what its texts name, where it has the choice.
    AnyShader MakeFilled(Texts texts) const
    {
        const AnyShader shader = AnyShader::Make(fTable);
        for (const auto& [name, code] : {std::pair("fReferenceMode", Code("OBJT")), {"fMode", Code("OBJM")}})
            if (const Field* const field = fTable.Find(name); field != nullptr && !TextFields().empty())
                WriteField({field, code}, shader.Record());
        for (const Field* const text : TextFields())
            if (texts == Texts::kNames)
                WriteField({text, NameOf(*text)}, shader.Record());
        return shader;
    }

    Bytes Saved(const AnyShader& shader) const
    {
        return {shader.Record(), shader.Record() + fTable.fRecordSize};
    }

    /// A shader with a record that was read back. Its slots were empty, so no counted pointer comes with it.
    AnyShader MakeFrom(const Bytes& saved) const
    {
        const AnyShader shader = AnyShader::Make(fTable);
        std::memcpy(shader.Record(), saved.data(), saved.size());
        return shader;
    }

    /// What the shader answers to a few samples, and what it asks the scene meanwhile.
    std::string Answers(const AnyShader& shader);

    /// That a shader with the bytes compares and shades as `sound`, one that holds the same, does.
    void ExpectLike(const AnyShader& sound, const Bytes& saved);

private:
    void Put(const std::string& name, float place)
    {
        FakeElement& element = fScene.Add(name);
        element.fIsLight = element.fIsInstance = true;
        element.fTransform.fTranslation = {place, 2 * place, -place};
        element.fLightTransform = element.fTransform;
        element.fLightState.fKind = 1;
        element.fLightState.fLightColor = {place, 1, 0};
        element.fOnRay = [place](RayHitParams& params) {
            params.fHit->fShapeMatrix[0][0] = params.fHit->fShapeMatrix[1][1] = place / 8;
            params.fHit->fBlock.fShading.fDerivU = {1, 0, 0};
            params.fHit->fBlock.fShading.fDerivV = {0, 1, 0};
            return true;
        };
    }
};

std::string SavedRecordsTest::Answers(const AnyShader& shader)
{
    TakeReports(); // a library that was just opened has some
    std::ostringstream answers;
    answers << std::hexfloat;
    for (int i = 0; i < 8; ++i) {
        ShadingIn in;
        const auto step = static_cast<float>(i);
        in.fInstance = static_cast<ITreeElement*>(fScene.fRoot->fChildren[0]);
        in.fUV = {step / 8, step / 16};
        in.fPointGlobal = in.fPointLocal = {step, 1, 0};
        in.fNormalGlobal = in.fNormalLocal = {0.6f, 0, 0.8f};
        in.fDerivU = {1, 0, 0};
        in.fDerivV = {0, 1, 0};
        float value = 0;
        TMCColorRGBA color = TMCColorRGBA::kOpaqueBlack;
        TVector3 vector;
        ShadingOut surface;
        shader->ShadeValue(value, fFullArea, in);
        shader->ShadeColor(color, fFullArea, in);
        shader->ShadeVector(vector, in);
        answers << value << ' ' << shader->ShadeSurface(surface, in);
        for (uint32_t channel = 0; channel < 4; ++channel)
            answers << ' ' << color[channel] << ' ' << surface.fColor[channel];
        for (uint32_t axis = 0; axis < 3; ++axis)
            answers << ' ' << vector[axis] << ' ' << in.fPointGlobal[axis];
        answers << '\n' << fScene.TakeCalls() << '\n';
    }
    for (const std::string& report : TakeReports())
        answers << report << '\n';
    return answers.str();
}

void SavedRecordsTest::ExpectLike(const AnyShader& sound, const Bytes& saved)
{
    const AnyShader twin = MakeFrom(Saved(sound));
    const AnyShader foreign = MakeFrom(saved);
    const bool same = twin.IsSameAs(sound);
    for (const bool changed : {false, true}) {
        EXPECT_EQ(foreign.IsSameAs(sound), same) << changed;
        EXPECT_EQ(sound.IsSameAs(foreign), same) << changed;
        EXPECT_EQ(foreign.Changed(), sound.Changed());
    }
    EXPECT_EQ(Answers(foreign), Answers(sound));
}

#ifndef _WIN32 // where a test's program starts itself anew
std::string Hex(const Bytes& bytes)
{
    std::ostringstream text;
    for (const unsigned char byte : bytes)
        text << "0123456789abcdef"[byte >> 4] << "0123456789abcdef"[byte & 15];
    return text.str();
}

Bytes FromHex(const std::string& text)
{
    Bytes bytes;
    for (size_t i = 0; i + 1 < text.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(text.substr(i, 2), nullptr, 16)));
    return bytes;
}

TEST_P(SavedRecordsTest, ShadeInAnotherProcessAsInTheirOwn)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a new process, with addresses of its own
    for (const Texts texts : {Texts::kNames, Texts::kDefaults}) {
        std::string told;
        const auto listen = testing::Truly([&told](const std::string& text) {
            told = text;
            return true;
        });
        EXPECT_EXIT(
            {
                const AnyShader shader = MakeFilled(texts);
                const Bytes saved = Saved(shader);
                shader.Changed();
                std::cerr << "<" << Hex(saved) << ">" << Answers(shader) << "<end>";
                std::_Exit(0);
            },
            testing::ExitedWithCode(0), listen);
        if (told.empty()) // in the process that is to tell the other texts
            continue;
        const size_t start = told.find('<') + 1, middle = told.find('>');
        const Bytes saved = FromHex(told.substr(start, middle - start));
        ASSERT_EQ(saved.size(), fTable.fRecordSize);
        ExpectLike(MakeFilled(texts), saved);
        const AnyShader foreign = MakeFrom(saved);
        foreign.Changed();
        EXPECT_EQ(Answers(foreign), told.substr(middle + 1, told.find("<end>") - middle - 1));
    }
}
#endif

TEST_P(SavedRecordsTest, NeverLendTheTablesOfTheirTexts)
{
    for (const Texts texts : {Texts::kNames, Texts::kDefaults}) {
        const AnyShader sound = MakeFilled(texts);
        Bytes saved = Saved(sound);
        constexpr uint64_t kNoTable = 0xDEADBEEFDEADBEEF;
        for (const Field* const text : TextFields())
            std::memcpy(&saved[text->fOffset], &kNoTable, sizeof kNoTable);
        ExpectLike(sound, saved);
    }
}

TEST_P(SavedRecordsTest, MayHoldTextsWithWrongCountsAndNoEnd)
{
    AnyShader sound = MakeFilled(Texts::kDefaults);
    for (const Field* const text : TextFields())
        WriteField({text, std::string(255, 'w')}, sound.Record());
    Bytes saved = Saved(sound);
    for (const Field* const text : TextFields())
        std::memset(&saved[text->fOffset], 'w', LayoutOf(text->fType).fSize); // its table too
    ExpectLike(sound, saved);
}

std::vector<const char*> Names()
{
    std::vector<const char*> names;
    for (const ParameterTable& table : AllClasses())
        names.push_back(table.fName.c_str());
    return names;
}

INSTANTIATE_TEST_SUITE_P(All, SavedRecordsTest, testing::ValuesIn(Names()),
    [](const auto& info) { return std::string(info.param); });

} // namespace
