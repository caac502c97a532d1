#include "host/parameters/FieldValue.h"
#include "module/UnroutedClassIDs.h"
#include "tests/support/ShaderTest.h"
#include <cstring>
#include <sstream>

// Every class: what a new shader tells and its record holds, and which fields SameParameters compares.

namespace {

using namespace fernwick;

struct Record {
    const char* fClass;
    uint32_t fStart;               ///< `Mark` of what a new shader tells and holds
    const char* fLeftOut = "none"; ///< of the comparison; vectors and colours by component
    bool fNeverSame = false;       ///< as another object's
};

const Record kRecords[] = {{"Weave", 0x0A2014D5, "none", true}, {"Gray", 0x6E19602B, "fColorSwitches.*"},
    {"Super_mixer", 0xF08FBC09, "fLinearEdge"}, {"Super_mixer_top", 0xC225B2DF, "fLinearEdge"},
    {"Iridescent", 0x9F2BF2E3, "fReferenceMode|fBands.*fColor 3"}, {"Location", 0xC263CACD, "none", true},
    {"Fresnel", 0x8C7F631C,
        "fPreset2|fWavelengthColor.*|fIlluminantColor.*|fWavelengthLinear.*|fWhiteX|fWhiteY"},
    {"Proximity", 0xAA41D447, "fFalloff|fSingleObject"}, {"Translucent", 0x1707FA3B}, {"Lit", 0x6E717184},
    {"Drip", 0xAD8A6E42}, {"MultiPassControl", 0xB2266623, "fPassName.*"},
    {"MultiPassManager", 0x1C8AB23A, "fPassName.*"}, {"Coordinate_Shift", 0xB951F5C4, "fObjectName"},
    {"Key", 0x31FEB44D}, {"Spoke", 0x4DB644D4, "fTaper"},
    {"Curvature", 0xBBD46E30, "fSurfaceName|fBands.*fColor 3"}, {"Corners", 0xBB6CB9A5},
    {"Shadow_pass", 0x7C2907ED}};

void PrintTo(const Record& record, std::ostream* out) { *out << record.fClass; }

/// A number for a text, by the method of Fowler, Noll and Vo.
uint32_t Mark(const std::string& text)
{
    uint32_t mark = 2166136261;
    for (const char letter : text)
        mark = (mark ^ static_cast<unsigned char>(letter)) * 16777619;
    return mark;
}

size_t FloatsOf(FieldType type)
{
    return type == FieldType::kFloat || (type >= FieldType::kVector2 && type <= FieldType::kRGBA)
        ? LayoutOf(type).fSize / sizeof(float)
        : 0;
}

class RecordsTest : public ShaderTest, public testing::WithParamInterface<Record> {
protected:
    struct Shader {
        MCCountedPtr<ShaderWrapper> fWrapper;

        I3DExShader* operator->() const { return &fWrapper->Shader(); }
        char* Record() const { return &fWrapper->Record<char>(); }
    };

    const ParameterTable& fTable = *FindClass(GetParam().fClass);

    /// A new shader, of the other identifier if asked and if there are two.
    Shader Make(bool twin = false) const
    {
        if (const GUID* const unrouted = UnroutedClassID(fTable.fName))
            return {ShaderWrapper::Make(TestedLibrary().Unrouted(), *unrouted)};
        return {
            ShaderWrapper::Make(TestedLibrary(), twin ? fTable.fClassIDs.back() : fTable.fClassIDs.front())};
    }

    /// Whether two new shaders are the same after one has another value there, or both have NaN.
    bool IsSameWith(const Field& field, size_t part, bool nan) const
    {
        const Shader one = Make(), other = Make();
        char* const place = other.Record() + field.fOffset + part * sizeof(float);
        if (FloatsOf(field.fType) > 0) {
            float number;
            std::memcpy(&number, place, sizeof number);
            number = nan ? kNaN : number + 1;
            std::memcpy(place, &number, sizeof number);
            if (nan)
                std::memcpy(one.Record() + (place - other.Record()), &number, sizeof number);
        } else if (field.fType == FieldType::kShader) {
            Plug(*reinterpret_cast<SubShaderSlot*>(place), FakeValue(0));
        } else if (field.fType == FieldType::kString) {
            WriteField({&field, std::string("another")}, other.Record());
        } else {
            *place ^= 1;
        }
        return other->SameParameters(one.operator->()) != 0;
    }
};

TEST_P(RecordsTest, StartWithTheSettledDefaults)
{
    const Shader shader = Make();
    ShadingFlags flags;
    shader->ReportNeeds(flags);
    std::string text = "needs " + std::to_string(flags.fNeeds) + ", trait "
        + std::to_string(shader->QueryBooleanTrait()) + "\n";
    for (const Field& field : fTable.fFields)
        text += field.fName + " " + ValueText(field, ReadField(field, shader.Record())) + "\n";
    EXPECT_EQ(Mark(text), GetParam().fStart) << text;
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
    const Shader one = Make(), twin = Make(true);
    EXPECT_FALSE(one->SameParameters(nullptr));
    EXPECT_TRUE(one->SameParameters(one.operator->()));
    EXPECT_NE(one->SameParameters(twin.operator->()) != 0, GetParam().fNeverSame);
    for (const Field& field : fTable.fFields)
        for (size_t part = 0; part < std::max<size_t>(FloatsOf(field.fType), 1); ++part)
            for (const bool nan : {false, true}) {
                if (nan && FloatsOf(field.fType) == 0)
                    continue;
                const std::string name
                    = FloatsOf(field.fType) > 1 ? field.fName + " " + std::to_string(part) : field.fName;
                EXPECT_EQ(IsSameWith(field, part, nan), IsLeftOut(GetParam(), name)) << name;
            }
}

TEST(Records, AreThoseOfAllClasses) { EXPECT_EQ(std::size(kRecords), AllClasses().size()); }

INSTANTIATE_TEST_SUITE_P(All, RecordsTest, testing::ValuesIn(kRecords),
    [](const auto& info) { return std::string(info.param.fClass); });

} // namespace
