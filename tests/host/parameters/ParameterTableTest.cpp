#include "host/parameters/ParameterTable.h"
#include "host/json/FieldReader.h"
#include "host/parameters/Doubts.h"
#include "host/parameters/Notation.h"
#include "tests/host/parameters/TableChecks.h"
#include "tests/support/ShaderTest.h"
#include <algorithm>
#include <set>

using namespace fernwick;

namespace {

struct TestPart {
    float fEdge = 1;
    bool fOn = true;
};

struct TestRecord {
    int32_t fMode = Code("ABCD");
    bool fGrid[2][3] = {};
    TestPart fParts[2];
    TVector2 fRange[2];
    int32_t fCount = 3;
    TMCColorRGBA fColor = {0, 0, 0, 0};
    TMCString255 fText;
    int32_t fMade = 7;
    float fLoose[2] = {1, 1};
    TVector2 fEnds;
    int32_t fPreset = 1;
    float fTyped = 2;
    int32_t fWidth[3] = {1, 1, 1};
    bool fRow[3] = {};
    SubShaderSlot fInks[3];
    SubShaderSlot fSlot;
};

constexpr int32_t kSecondMode = Code("EFGH");

const ParameterTable& TestTable()
{
    static const ParameterTable table("Test", {}, kOutputValue, sizeof(TestRecord), "For tests.",
        {
            FIELD(TestRecord, fMode, "Mode", "How.").Choices({{"ABCD", "First"}, {"EFGH", "Second"}}),
            FIELD(TestRecord, fGrid, "Row #, column #", "Crossing #, #."),
            RECORDS(TestRecord, fParts, "Part #", FIELD(TestPart, fEdge, "edge", "Where.").Unit("mm"),
                FIELD(TestPart, fOn, "on", "Whether.")),
            FIELD(TestRecord, fRange, "Range", "From, to.").Labels({"Low range", "High range"}),
            FIELD(TestRecord, fCount, "Count", "How many.").Range(1, 5),
            FIELD(TestRecord, fColor, "Colour", "Which."),
            FIELD(TestRecord, fText, "Text", "What."),
            FIELD(TestRecord, fMade, "Made", "Out of the rest.").Derived(),
            FIELD(TestRecord, fLoose, "Loose #", "Number #.").AtLeast(0).Unit("mm").Loose(),
            FIELD(TestRecord, fEnds, "Ends", "From, to.").Range(-1, 1).Loose(),
            FIELD(TestRecord, fPreset, "Preset", "Which.").Range(1, 15).Loose(),
            FIELD(TestRecord, fTyped, "Typed", "How much.").OnlyWith("fPreset", 15),
            FIELD(TestRecord, fWidth, "Width #", "Of #.").OnlyWith("fMode", kSecondMode, 1),
            FIELD(TestRecord, fRow, "Row #", "Whether.").OnlyWith("fMode", kSecondMode),
            FIELD(TestRecord, fInks, "Ink #", "Of #.").OnlyWith("fMode", kSecondMode, 1),
            FIELD(TestRecord, fSlot, "Slot", "What is plugged in."),
        });
    return table;
}

class ParameterTableTest : public ShaderTest { };

TEST_F(ParameterTableTest, TablesOfClassesFitTheObjectsThatTheLibraryMakes)
{
    std::set<std::string> ids;
    for (const ParameterTable& table : AllClasses()) {
        SCOPED_TRACE(table.fName);
        EXPECT_EQ(FindClass(table.fName), &table);
        ExpectCovers(table);
        for (const GUID& id : table.fClassIDs) {
            EXPECT_TRUE(ids.insert(GuidText(id)).second);
            const auto made = ShaderWrapper::Make(TestedLibrary(), id);
            ASSERT_TRUE(made);
            EXPECT_EQ(made->Exchanger().GetParamsBufferSize(), table.fRecordSize);
            EXPECT_EQ(made->Shader().GetOutputKinds(), table.fOutputKinds);
            ExpectDescribes(table, made->Exchanger().GetExtensionDataBuffer());
        }
        if (table.fClassIDs.empty())
            ExpectDescribes(table, nullptr);
    }
    EXPECT_EQ(GuidText(FindClass("Key")->fClassIDs.front()), "379752D6-C5EB-4173-B3E4-FF727769483A");
    EXPECT_EQ(FindClass("key"), nullptr);
}

TEST_F(ParameterTableTest, ArraysAndNestedRecordsBecomeFieldsWithNamesAndLabels)
{
    ExpectCovers(TestTable());
    const struct {
        const char* name;
        size_t offset;
        const char* label;
        const char* help;
    } rows[] = {
        {"fMode", offsetof(TestRecord, fMode), "Mode", "How."},
        {"fParts[1].fOn", offsetof(TestRecord, fParts) + 12, "Part 2: on", "Whether."},
        {"fGrid[1][0]", offsetof(TestRecord, fGrid) + 3, "Row 2, column 1", "Crossing 2, 1."},
        {"fRange[1]", offsetof(TestRecord, fRange) + 8, "High range", "From, to."},
    };
    for (const auto& row : rows) {
        const Field* const field = TestTable().Find(row.name);
        ASSERT_NE(field, nullptr) << row.name;
        EXPECT_EQ(field->fOffset, row.offset);
        EXPECT_EQ(field->fLabel, row.label);
        EXPECT_EQ(field->fHelp, row.help);
    }
    EXPECT_EQ(TestTable().Find("fParts[0].fEdge")->fUnit, "mm");
    EXPECT_EQ(TestTable().fFields.size(), 32u);
    EXPECT_EQ(TestTable().Find("fParts"), nullptr);
}

/// Reads `{"address": value, ...}`.
std::vector<FieldSetting> ReadSettings(const std::string& text)
{
    const Json json = ParseJson(text);
    const ShaderNames names{{"other", 0}, {"a", 1}, {"b", 2}};
    const std::filesystem::path folder;
    const FieldReader reader(TestTable(), names, folder);
    std::vector<FieldSetting> settings;
    for (const auto& [address, node] : JsonNode(json, "t").Members())
        reader.Read(address, node, settings);
    return settings;
}

void ReadInto(TestRecord& record, const std::string& text)
{
    for (const FieldSetting& setting : ReadSettings(text))
        WriteField(setting, &record);
}

TEST_F(ParameterTableTest, DocumentsAddressFieldsWholeOrInPart)
{
    TestRecord record;
    ReadInto(record, R"({"fMode": "Second", "fParts": [{"fEdge": 2}, {"fOn": false}], "fParts[1].fEdge": 3,
        "fGrid": [[true, false, true], [false, false, true]], "fGrid[1]": [true, false, false],
        "fRange[1]": [4, 5.5], "fCount": 5, "fColor": [0.25, 0.5, 0.75], "fText": "d\u00e9j\u00e0"})");
    EXPECT_EQ(record.fMode, Code("EFGH"));
    EXPECT_EQ(record.fParts[0].fEdge, 2);
    EXPECT_TRUE(record.fParts[0].fOn);
    EXPECT_EQ(record.fParts[1].fEdge, 3);
    EXPECT_FALSE(record.fParts[1].fOn);
    const bool grid[] = {true, false, true, true, false, false};
    EXPECT_TRUE(std::equal(std::begin(grid), std::end(grid), &record.fGrid[0][0]));
    EXPECT_EQ(record.fRange[0], TVector2(0, 0));
    EXPECT_EQ(record.fRange[1], TVector2(4, 5.5f));
    EXPECT_THAT(record.fColor, IsColor(0.25f, 0.5f, 0.75f, 1));
    EXPECT_EQ(record.fText, std::string_view("d\xC3\xA9j\xC3\xA0"));

    const auto text = [&record](const char* name) {
        const Field& field = *TestTable().Find(name);
        return ValueText(field, ReadField(field, &record));
    };
    EXPECT_EQ(text("fMode"), "\"EFGH\"");
    EXPECT_EQ(text("fRange[1]"), "[4, 5.5]");
    EXPECT_EQ(text("fParts[0].fOn"), "true");
    EXPECT_EQ(text("fSlot"), "null");
    ReadInto(record, R"({"fMode": 1751477360, "fParts[0].fEdge": 0.1})"); // any integer, here "help"
    EXPECT_EQ(text("fMode"), "\"help\"");
    EXPECT_EQ(text("fParts[0].fEdge"), "0.1");
    // As in a record that another process saved, whose tables of operations lie elsewhere.
    std::memset(static_cast<void*>(&record.fText), 0xEE, sizeof(void*));
    EXPECT_EQ(text("fText"), "\"d\xC3\xA9j\xC3\xA0\"");
    ReadInto(record, R"({"fText": "another"})");
    EXPECT_EQ(text("fText"), "\"another\"");
}

TEST_F(ParameterTableTest, ValuesThatTheShaderTakesInItsOwnWayAreToldOnceAField)
{
    const auto doubts = [](const std::string& text) {
        static const TestRecord standard{};
        return FindDoubts(ReadSettings(text), &standard);
    };
    EXPECT_THAT(doubts(R"({"fMode": 1145258561, "fLoose": [0, 1e30], "fEnds": [-1, 1], "fCount": 5,
        "fPreset": 15, "fTyped": 3})"),
        testing::ElementsAre(
            R"(fMode: expected one of "ABCD" (First), "EFGH" (Second), got 1145258561; the shader )"
            "takes it in its own way"));
    EXPECT_THAT(doubts(R"({"fLoose": [-1, -0.5], "fLoose[0]": 2, "fEnds": [-3, 1.5], "fPreset": 16})"),
        testing::ElementsAre("fLoose[1]: expected 0 or more mm, got -0.5; the shader takes it in its own way",
            "fEnds: expected -1 to 1, got -3; the shader takes it in its own way",
            "fPreset: expected 1 to 15, got 16; the shader takes it in its own way"));
    const char* const alone = "fTyped: it counts only where fPreset is 15, which it isn't";
    EXPECT_THAT(doubts(R"({"fTyped": 3})"), testing::ElementsAre(alone));
    EXPECT_THAT(doubts(R"({"fTyped": 3, "fPreset": 8})"), testing::ElementsAre(alone));
    EXPECT_THAT(doubts(R"({"fTyped": 3, "fPreset": 15})"), testing::IsEmpty());

    // Of an array, the first element may count in any case: what repeats it is as it is meant.
    EXPECT_THAT(doubts(R"({"fWidth": [2, 2, 4], "fRow": [true, true, false]})"),
        testing::ElementsAre(R"(fWidth[2]: it counts only where fMode is "EFGH", which it isn't)",
            R"(fRow[0]: it and 1 behind it count only where fMode is "EFGH", which it isn't)"));
    EXPECT_THAT(doubts(R"({"fWidth": [2, 2, 2], "fInks": ["a", "a", null]})"), testing::IsEmpty());
    // Under a code that only the shader knows they may count.
    EXPECT_THAT(doubts(R"({"fMode": 1145258561, "fWidth": [2, 3, 4]})"),
        testing::ElementsAre(testing::StartsWith("fMode: ")));
    EXPECT_THAT(doubts(R"({"fWidth[1]": 1, "fRow": [false, false, false]})"),
        testing::IsEmpty()); // as they are anyway
    EXPECT_THAT(doubts(R"({"fInks": ["a", "b", "b"], "fMode": "First"})"),
        testing::ElementsAre(
            R"(fInks[1]: it and 1 behind it count only where fMode is "EFGH", which it isn't)"));
    EXPECT_THAT(
        doubts(R"({"fInks": ["a", "b", "a"], "fWidth": [2, 3, 4], "fMode": "Second"})"), testing::IsEmpty());

    // A condition that the defaults fulfil would be told where nothing is amiss.
    for (const ParameterTable& table : AllClasses())
        for (const Field& field : table.fFields) {
            if (!field.fCondition)
                continue;
            const Field* const other = table.Find(field.fCondition->fField);
            ASSERT_NE(other, nullptr) << field.fName;
            const auto made = ShaderWrapper::Make(TestedLibrary(), table.fClassIDs.front());
            EXPECT_NE(std::get<int32_t>(ReadField(*other, made->Exchanger().GetExtensionDataBuffer())),
                field.fCondition->fValue);
        }
}

TEST_F(ParameterTableTest, RefusedValuesNameThePlaceAndWhatWasExpected)
{
    const std::string longText(256, 'x');
    const struct {
        std::string member;
        const char* error;
    } rows[] = {
        {R"("fMode": "abcd")",
            R"(t.fMode: expected one of "ABCD" (First), "EFGH" (Second), got "abcd"; did you mean "ABCD"?)"},
        {R"("fMode": 4294967296)", "t.fMode: expected an integer of 32 bits, got 4294967296"},
        {R"("fParts": [{}])", "t.fParts: expected an array of 2, each an object, got an array of 1"},
        {R"("fGrid": "Test.fGrid")",
            R"(t.fGrid: expected an array of 2, each an array of 3, each true or false, got "Test.fGrid")"},
        {R"("fParts[0]": 1)", "t.fParts[0]: expected an object, got 1"},
        {R"("fParts": [{"fOn": 1}, {}])", "t.fParts[0].fOn: expected true or false, got 1"},
        {R"("fPart": [])", "t.fPart: Test has no such field; did you mean \"fParts\"?"},
        {R"("fGrid[2]": [])", "t.fGrid[2]: Test has no such field; did you mean \"fGrid[0]\"?"},
        {R"("qqqqqqq": 1)",
            "t.qqqqqqq: Test has no such field; it has fMode, fGrid, fParts, fRange, fCount, fColor, fText, "
            "fMade, fLoose, fEnds, fPreset, fTyped, fWidth, fRow, fInks, fSlot"},
        {R"("fRange[0]": [1, 2, 3])", "t.fRange[0]: expected two numbers, got [1,2,3]"},
        {R"("fRange[0]": [1, "2"])", "t.fRange[0][1]: expected a number, got \"2\""},
        {R"("fRange[0]": [1, -3.5e38])",
            "t.fRange[0][1]: expected a number that a float can hold, got -3.5e+38"},
        {R"("fCount": 2.0)", "t.fCount: expected an integer, got 2.0"},
        {R"("fCount": 0)", "t.fCount: expected an integer from 1 to 5, got 0"},
        {R"("fCount": 2147483648)", "t.fCount: expected an integer of 32 bits, got 2147483648"},
        {R"("fCount": -2147483649)", "t.fCount: expected an integer of 32 bits, got -2147483649"},
        {R"("fColor": [1, 2])", "t.fColor: expected four numbers from red to alpha, got [1,2]"},
        {R"("fText": ")" + longText + '"', "t.fText: expected a text of at most 255 bytes, got 256"},
        {R"("fText": "a\u0000b")", "t.fText: a text can't hold a zero byte"},
        {R"("fText": null)", "t.fText: expected a text, got null"},
        {R"("fMade": 1)", "t.fMade: the shader derives this field; it can't be set"},
        {R"("fSlot": "othr")", "t.fSlot: there is no shader \"othr\"; did you mean \"other\"?"},
        {R"("fSlot": {})", "t.fSlot: expected the name of a shader, got an object"},
        {R"("fCount": 1, "fCount": 2)", "the key \"fCount\" occurs twice in one object"},
    };
    TestRecord record;
    for (const auto& row : rows)
        try {
            ReadInto(record, '{' + row.member + '}');
            ADD_FAILURE() << "taken: " << row.member;
        } catch (const GraphError& error) {
            EXPECT_STREQ(error.what(), row.error);
        }
}

} // namespace
