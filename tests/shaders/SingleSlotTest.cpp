#include "host/parameters/FieldValue.h"
#include "module/UnroutedClassIDs.h"
#include "shaders/mapping/Coordinate_Shift.h"
#include "shaders/mapping/Gray.h"
#include "shaders/mapping/Key.h"
#include "shaders/mapping/Location.h"
#include "shaders/scene/Corners.h"
#include "shaders/scene/Curvature.h"
#include "shaders/scene/Proximity.h"
#include "tests/shaders/scene/SceneTest.h"

// What the mapping and scene shaders with one plugged shader have in common.

namespace {

using namespace fernwick;

struct SingleSlot {
    const char* fClass;
    std::vector<std::pair<const char*, FieldValue>> fSettings = {}; ///< that make the class ask its shader
    bool fAsks = true;
    bool fPassesFlag = true; ///< the caller's, to its shader
};

void PrintTo(const SingleSlot& slot, std::ostream* out) { *out << slot.fClass; }

const SingleSlot kSingleSlots[] = {
    {"Key"},
    {"Gray"},
    {"Location", {{"fUseSubShader", true}}},
    {"Coordinate_Shift", {}, true, false},
    {"Proximity", {{"fUseShader", true}, {"fTargetName", std::string("Shaded")}}},
    {"Curvature", {{"fMixStyle", Code("SHMX")}, {"fSurfaceName", std::string("Shaded")}}},
    {"Corners", {}, false, false},
};

constexpr MCErr kRefusal = 0x80011234;

/// What a host may plug in that isn't a shader.
class NoShader final : public Component<IMCUnknown, IID_IMCUnknown> {
public:
    MCErr QueryInterface(const GUID&, void** out) override
    {
        *out = nullptr;
        return kRefusal;
    }
};

class SingleSlotTest : public SceneTest, public testing::WithParamInterface<SingleSlot> {
protected:
    const ParameterTable& fTable = *FindClass(GetParam().fClass);
    MCCountedPtr<ShaderWrapper> fWrapper = Make();
    SubShaderSlot* fSlot = nullptr;

    SingleSlotTest()
    {
        char* const record = &fWrapper->Record<char>();
        for (const Field& field : fTable.fFields) {
            if (field.fType == FieldType::kShader)
                fSlot = reinterpret_cast<SubShaderSlot*>(record + field.fOffset);
            for (const auto& [name, value] : GetParam().fSettings)
                if (field.fName == name)
                    WriteField({&field, value}, record);
        }
    }
    MCCountedPtr<ShaderWrapper> Make() const
    {
        if (const GUID* const unrouted = UnroutedClassID(fTable.fName))
            return ShaderWrapper::Make(TestedLibrary().Unrouted(), *unrouted);
        return ShaderWrapper::Make(TestedLibrary(), fTable.fClassIDs.front());
    }
    MCErr Changed() const { return fWrapper->Exchanger().ExtensionDataChanged(); }
    /// Shades once in every way that the class offers.
    void Shade()
    {
        I3DExShader& shader = fWrapper->Shader();
        const int32_t kinds = shader.GetOutputKinds();
        float value = 0;
        TMCColorRGBA color = TMCColorRGBA::kOpaqueBlack;
        ShadingOut surface;
        for (const int32_t kind : {kOutputValue, kOutputColor, kOutputSurface}) {
            if ((kinds & kind) == 0)
                continue;
            bool fullArea = true;
            if (kind == kOutputValue)
                shader.ShadeValue(value, fullArea, fIn);
            else if (kind == kOutputColor)
                shader.ShadeColor(color, fullArea, fIn);
            else
                shader.ShadeSurface(surface, fIn);
            fLeftFlag = kind == kOutputSurface ? fLeftFlag : fullArea;
        }
        TakeReports();
    }

    bool fLeftFlag = false;
};

TEST_P(SingleSlotTest, AChangeConnectsTheShaderAndTellsTheStatusOfTheQuery)
{
    const auto plugged = FakeColor({0.5f, 0.5f, 0.5f, 1});
    const int calls = GetParam().fAsks ? 1 : 0;
    Plug(*fSlot, plugged);
    Shade();
    EXPECT_EQ(plugged->Calls(), 0); // not before the change
    EXPECT_EQ(Changed(), MC_S_OK);
    plugged->fKinds = kOutputVector;
    Shade(); // nor are the kinds of now
    EXPECT_EQ(plugged->fColorCalls, calls);
    EXPECT_EQ(fLeftFlag, GetParam().fPassesFlag); // as the shader left it

    const auto refusing = MakeCounted<NoShader>();
    *fSlot = refusing.Get();
    Shade();
    EXPECT_EQ(plugged->Calls(), 2 * calls);
    EXPECT_EQ(Changed(), kRefusal);
    Shade();
    EXPECT_EQ(plugged->Calls(), 2 * calls);
    *fSlot = nullptr;
    EXPECT_EQ(Changed(), MC_S_OK);
}

TEST_P(SingleSlotTest, ASampleBeginsWithTheFlagOff)
{
    for (IMCUnknown* const instance : {static_cast<IMCUnknown*>(nullptr), AsInstance(fShaded)})
        for (const bool changed : {false, true}) {
            if (changed) {
                EXPECT_EQ(Changed(), MC_S_OK);
            }
            fIn.fInstance = instance;
            Shade();
            EXPECT_FALSE(fLeftFlag);
        }
}

INSTANTIATE_TEST_SUITE_P(All, SingleSlotTest, testing::ValuesIn(kSingleSlots),
    [](const auto& info) { return std::string(info.param.fClass); });

} // namespace
