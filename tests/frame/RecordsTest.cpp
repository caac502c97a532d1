#include "host/parameters/FieldValue.h"
#include "tests/frame/AnyShader.h"
#include "tests/frame/RecordDefaults.h"
#include <algorithm>
#include <cstring>
#include <map>
#include <sstream>

// Every class: what a new shader tells and its record holds, and which fields SameParameters compares.

namespace {

using namespace fernwick;

struct Record {
    const char* fClass;
    const char* fLeftOut = "none"; ///< of the comparison; vectors and colours by component
    bool fNeverSame = false;       ///< as another object's
};

const Record kRecords[] = {{"Weave", "none", true}, {"Gray", "fColorSwitches.*"},
    {"Super_mixer", "fLinearEdge"}, {"Super_mixer_top", "fLinearEdge"},
    {"Iridescent", "fReferenceMode|fBands.*fColor 3"}, {"Location", "none", true},
    {"Fresnel", "fPreset2|fWavelengthColor.*|fIlluminantColor.*|fWavelengthLinear.*|fWhiteX|fWhiteY"},
    {"Proximity", "fFalloff|fSingleObject"}, {"Translucent"}, {"Lit"}, {"Drip"},
    {"MultiPassControl", "fPassName.*"}, {"MultiPassManager", "fPassName.*"},
    {"Coordinate_Shift", "fObjectName"}, {"Key"}, {"Spoke", "fTaper"},
    {"Curvature", "fSurfaceName|fBands.*fColor 3"}, {"Corners"}, {"Shadow_pass"}};

void PrintTo(const Record& record, std::ostream* out) { *out << record.fClass; }

size_t FloatsOf(FieldType type)
{
    return type == FieldType::kFloat || (type >= FieldType::kVector2 && type <= FieldType::kRGBA)
        ? LayoutOf(type).fSize / sizeof(float)
        : 0;
}

class RecordsTest : public ShaderTest, public testing::WithParamInterface<Record> {
protected:
    const ParameterTable& fTable = *FindClass(GetParam().fClass);

    AnyShader Make(bool twin = false) const { return AnyShader::Make(fTable, twin); }

    enum class Change { kOfOne, kOfBoth, kNaNInBoth };

    /// Whether two new shaders are the same, whichever is asked, after one has another value there or both have it.
    bool IsSameWith(const Field& field, size_t part, Change change) const
    {
        const AnyShader one = Make(), other = Make();
        const auto plugged = FakeValue(0);
        for (const AnyShader* const shader : {&one, &other}) {
            if (change == Change::kOfOne && shader == &one)
                continue;
            char* const place = shader->Record() + field.fOffset + part * sizeof(float);
            if (FloatsOf(field.fType) > 0) {
                float number;
                std::memcpy(&number, place, sizeof number);
                number = change == Change::kNaNInBoth ? kNaN : number + 1;
                std::memcpy(place, &number, sizeof number);
            } else if (field.fType == FieldType::kShader) {
                Plug(*reinterpret_cast<SubShaderSlot*>(place), plugged);
            } else if (field.fType == FieldType::kString) {
                WriteField({&field, std::string("another")}, shader->Record());
            } else {
                *place ^= 1;
            }
        }
        const bool same = one.IsSameAs(other);
        EXPECT_EQ(other.IsSameAs(one), same) << field.fName << ", the other way round";
        return same;
    }
};

/// A field's name without its place in an array, the inner one of two.
std::string ArrayName(std::string name)
{
    if (const size_t open = name.rfind('['); open != std::string::npos)
        name.erase(open, name.find(']', open) - open + 1);
    return name;
}

/// The fields of a record in the notation of `RecordDefaults`.
std::string Listed(const ParameterTable& table, const char* record)
{
    std::vector<std::string> names;
    std::map<std::string, std::vector<std::string>> values;
    for (const Field& field : table.fFields) {
        const std::string name = ArrayName(field.fName);
        if (!values.contains(name))
            names.push_back(name);
        values[name].push_back(ValueText(field, ReadField(field, record)));
    }
    std::string text = "\n";
    for (const std::string& name : names) {
        const std::vector<std::string>& elements = values[name];
        const auto count = std::count(elements.begin(), elements.end(), elements[0]);
        text += name;
        if (count > 1 && static_cast<size_t>(count) == elements.size())
            text += ' ' + std::to_string(count) + " of " + elements[0];
        else
            for (const std::string& element : elements)
                text += ' ' + element;
        text += '\n';
    }
    return text;
}

TEST_P(RecordsTest, StartWithTheSettledDefaults)
{
    const auto* const settled = std::find_if(std::begin(kRecordDefaults), std::end(kRecordDefaults),
        [this](const RecordDefaults& row) { return row.fClass == fTable.fName; });
    ASSERT_NE(settled, std::end(kRecordDefaults));
    const AnyShader shader = Make();
    ShadingFlags flags;
    shader->ReportNeeds(flags);
    EXPECT_EQ(flags.fNeeds, settled->fNeeds);
    EXPECT_EQ(shader->QueryBooleanTrait(), settled->fTrait);
    EXPECT_EQ(Listed(fTable, shader.Record()), settled->fFields);
}

/// Each alternative by itself, since GoogleTest's own expressions have none on Windows.
bool IsLeftOut(const Record& record, const std::string& name)
{
    std::istringstream alternatives(record.fLeftOut);
    for (std::string one; std::getline(alternatives, one, '|');)
        if (testing::Matches(testing::MatchesRegex(one))(name))
            return true;
    return false;
}

TEST_P(RecordsTest, AreComparedByEachFieldThatIsntLeftOut)
{
    const AnyShader one = Make(), twin = Make(true);
    EXPECT_FALSE(one->SameParameters(nullptr));
    EXPECT_TRUE(one.IsSameAs(one));
    EXPECT_NE(one.IsSameAs(twin), GetParam().fNeverSame);
    for (const Field& field : fTable.fFields)
        for (size_t part = 0; part < std::max<size_t>(FloatsOf(field.fType), 1); ++part)
            for (const Change change : {Change::kOfOne, Change::kOfBoth, Change::kNaNInBoth}) {
                if (change == Change::kNaNInBoth && FloatsOf(field.fType) == 0)
                    continue;
                const std::string name
                    = FloatsOf(field.fType) > 1 ? field.fName + " " + std::to_string(part) : field.fName;
                const bool same
                    = change == Change::kOfBoth ? !GetParam().fNeverSame : IsLeftOut(GetParam(), name);
                EXPECT_EQ(IsSameWith(field, part, change), same) << name;
            }
}

TEST(Records, AreThoseOfAllClasses) { EXPECT_EQ(std::size(kRecords), AllClasses().size()); }

INSTANTIATE_TEST_SUITE_P(All, RecordsTest, testing::ValuesIn(kRecords),
    [](const auto& info) { return std::string(info.param.fClass); });

} // namespace
