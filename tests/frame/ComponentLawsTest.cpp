#include "frame/IExDataExchanger.h"
#include "frame/Query.h"
#include "frame/TMCException.h"
#include "module/ClassIDs.h"
#include "tests/support/FakeOuter.h"
#include "tests/support/ShaderTest.h"
#include <cstdlib>
#include <map>
#include <random>

// What holds for every class with a route, whatever it shades.

namespace {

using testing::ElementsAre;

struct RoutedClass {
    const char* fName;
    GUID fClassID;
};

void PrintTo(const RoutedClass& routed, std::ostream* out) { *out << routed.fName; }

constexpr RoutedClass kRoutedClasses[] = {
    {"Weave", {0x608112FA, 0x2448, 0x4404, {0x8E, 0x96, 0x17, 0xA8, 0xC6, 0xB5, 0xE9, 0xF9}}},
    {"Gray", {0xB30CC03F, 0x243F, 0x4F88, {0x9E, 0x16, 0x8B, 0x05, 0x71, 0x77, 0x1D, 0xBC}}},
    {"GrayTwin", {0x535766EF, 0xCF7A, 0x448A, {0x97, 0x18, 0x25, 0xC0, 0xE4, 0x84, 0xC3, 0x14}}},
    {"Super_mixer", {0x2B82DA60, 0xA115, 0x11D7, {0xA9, 0x26, 0x54, 0x55, 0x43, 0x44, 0x52, 0x00}}},
    {"Super_mixer_top", {0x490D324B, 0xB207, 0x4B1D, {0xA2, 0xAF, 0xE8, 0xCA, 0xB3, 0xC9, 0xD1, 0x06}}},
    {"Iridescent", {0x95066A60, 0x9909, 0x11D7, {0xA9, 0x26, 0x54, 0x55, 0x43, 0x44, 0x52, 0x00}}},
    {"Location", {0xD959106B, 0x78CD, 0x48E4, {0x94, 0x75, 0x29, 0x49, 0x03, 0x92, 0xEA, 0x46}}},
    {"Fresnel", {0xBE9FA2A5, 0x5FBE, 0x4558, {0x80, 0x09, 0x7A, 0x1F, 0x1D, 0x7A, 0x68, 0x02}}},
    {"FresnelTwin", {0xC21E8AD4, 0x1898, 0x4C50, {0x97, 0xF6, 0x81, 0x94, 0xF6, 0x83, 0x0F, 0x4C}}},
    {"Proximity", {0xCCE54E2B, 0x7650, 0x4059, {0x81, 0x9F, 0x78, 0x6B, 0x24, 0x9F, 0x25, 0xBC}}},
    {"Translucent", {0x999C3DA8, 0x7456, 0x4FB4, {0xA4, 0x81, 0x27, 0x00, 0xFC, 0xFE, 0x74, 0x9D}}},
    {"Lit", {0x64D2039A, 0x97CC, 0x4C82, {0x95, 0x9A, 0xEE, 0xFB, 0x58, 0xBF, 0x90, 0x6A}}},
    {"Drip", {0xE00678C0, 0xB7D1, 0x4620, {0xB1, 0x8D, 0xF6, 0x64, 0x4E, 0xE6, 0xB2, 0x56}}},
    {"MultiPassControl", {0xFDCF5228, 0x1C6A, 0x463B, {0x98, 0xC9, 0x97, 0x65, 0x39, 0x78, 0x4E, 0xE9}}},
    {"MultiPassManager", {0x80B31898, 0xD5AD, 0x4532, {0xA9, 0x11, 0xBE, 0x90, 0x60, 0x48, 0xD6, 0xF9}}},
    {"Coordinate_Shift", {0x4BFCBC62, 0x98F5, 0x4537, {0x8C, 0xAE, 0x77, 0xAD, 0x79, 0x54, 0x90, 0xFF}}},
    {"Key", {0x379752D6, 0xC5EB, 0x4173, {0xB3, 0xE4, 0xFF, 0x72, 0x77, 0x69, 0x48, 0x3A}}},
    {"Spoke", {0x48C59C53, 0x7AFF, 0x452D, {0x9F, 0x9D, 0xE1, 0xFE, 0xBE, 0xD0, 0x6F, 0xDB}}},
};

constexpr GUID kUnknownID = {0x12345678, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}};

/// A seed of its own each run, unless FERNWICK_SEED repeats one.
uint32_t Seed()
{
    const char* const text = std::getenv("FERNWICK_SEED");
    return text != nullptr ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : std::random_device{}();
}

class ComponentLawsTest : public ShaderTest, public testing::WithParamInterface<RoutedClass> {
protected:
    fernwick::MemoryService& fMemory = TestedLibrary().HostUtilities().Memory();

    MCErr Create(IMCUnknown* outer, const GUID& id, void** out)
    {
        return TestedLibrary().CreateInstance(GetParam().fClassID, outer, id, out);
    }
    MCCountedPtr<I3DExShader> MakePlain()
    {
        MCCountedPtr<I3DExShader> shader;
        void* face = nullptr;
        EXPECT_EQ(Create(nullptr, IID_I3DExShader, &face), MC_S_OK);
        *shader.Address() = static_cast<I3DExShader*>(face);
        return shader;
    }
    /// An object that `outer` keeps, uncounted.
    I3DExShader* MakeInside(FakeOuter& outer)
    {
        void* face = nullptr;
        EXPECT_EQ(Create(outer.Unknown(), IID_I3DExShader, &face), MC_S_OK);
        return outer.fInner = static_cast<I3DExShader*>(face);
    }
    void WalkFaces(I3DExShader* start, bool aggregated);
};

/// Queries, counts and releases at random, beginning with one reference. Every identifier leads from every face to
/// one and the same face, so queries are reflexive, symmetric and transitive, and all faces share one count.
void ComponentLawsTest::WalkFaces(I3DExShader* start, bool aggregated)
{
    constexpr GUID kInnerIDs[] = {IID_I3DExShader, IID_IExDataExchanger, IID_IMCUnknown};
    constexpr GUID kOtherIDs[] = {IID_IShellShader, IID_IShellDataComponent, kUnknownID};
    const uint32_t seed = Seed();
    SCOPED_TRACE("FERNWICK_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<IMCUnknown*> held{start};
    std::map<uint32_t, void*> faces;
    for (int step = 0; step < 2000; ++step) {
        const uint32_t choice = random() % 9;
        const auto count = static_cast<uint32_t>(held.size());
        IMCUnknown* const from = held[random() % count];
        void* out = &random;
        if (choice < 3) {
            ASSERT_EQ(from->QueryInterface(kInnerIDs[choice], &out), MC_S_OK);
            ASSERT_EQ(faces.try_emplace(choice, out).first->second, out);
            held.push_back(static_cast<IMCUnknown*>(out));
        } else if (choice < 6) {
            const bool found = aggregated && choice < 5; // the outer object's
            ASSERT_EQ(from->QueryInterface(kOtherIDs[choice - 3], &out), found ? MC_S_OK : kMCNoInterface);
            ASSERT_EQ(out != nullptr, found);
            if (found) {
                ASSERT_EQ(static_cast<IMCUnknown*>(out)->Release(), count);
            }
        } else if (count > 1) {
            ASSERT_EQ(from->AddRef(), count + 1);
            ASSERT_EQ(held.back()->Release(), count);
            ASSERT_EQ(held.back()->Release(), count - 1);
            held.pop_back();
        }
    }
    for (; held.size() > 1; held.pop_back())
        held.back()->Release();
    EXPECT_EQ(start->AddRef(), 2u);
    EXPECT_EQ(start->Release(), 1u);
}

TEST_P(ComponentLawsTest, TheFacesOfAnObjectAreOneObject)
{
    WalkFaces(MakePlain().Get(), false);
    FakeOuter outer;
    WalkFaces(MakeInside(outer), true);
}

TEST_P(ComponentLawsTest, AnAggregatedObjectDiesOnTheAnswerThatItsOuterObjectIsGone)
{
    FakeOuter outer;
    MakeInside(outer);
    EXPECT_EQ(outer.fCount, 1u); // creation left no reference of its own
    EXPECT_TRUE(TestedLibrary().HasLiveComponents());
    outer.fAnswers.clear();
    EXPECT_EQ(outer.Release(), 0u);
    EXPECT_THAT(outer.fAnswers, ElementsAre(0u, 0xFFFFFFFFu));
    EXPECT_FALSE(TestedLibrary().HasLiveComponents());
}

TEST_P(ComponentLawsTest, AFailedCreationLeavesNothing)
{
    const int64_t blocks = fMemory.LiveBlocks();
    FakeOuter outer;
    for (IMCUnknown* const candidate : {static_cast<IMCUnknown*>(nullptr), outer.Unknown()}) {
        void* out = &outer;
        EXPECT_EQ(Create(candidate, kUnknownID, &out), kMCNoInterface);
        EXPECT_EQ(out, nullptr);
        EXPECT_THAT(TakeReports(), ElementsAre("res == MC_S_OK"));
        EXPECT_EQ(Create(candidate, IID_I3DExShader, nullptr), kMCNoInterface);
        EXPECT_EQ(fMemory.LiveBlocks(), blocks);
        EXPECT_FALSE(TestedLibrary().HasLiveComponents());
        TakeReports();
    }
    EXPECT_EQ(outer.fCount, 1u);
    EXPECT_EQ(outer.fAsked.size(), 1u); // for the unknown identifier
}

TEST_P(ComponentLawsTest, RefusedMemoryMakesNothingAndLeavesNothing)
{
    const int64_t blocks = fMemory.LiveBlocks();
    MCErr result = kMCNoSuchClass;
    for (int64_t granted = 0; result != MC_S_OK; ++granted) {
        SCOPED_TRACE(granted);
        ASSERT_LT(granted, 100);
        void* out = &result;
        fMemory.RefuseAfter(granted);
        result = Create(nullptr, IID_I3DExShader, &out);
        fMemory.RefuseAfter(-1);
        EXPECT_EQ(TakeReports(), std::vector<std::string>(granted == 0 ? 1 : 0, "Bad Pointer"));
        if (result == MC_S_OK) {
            EXPECT_GE(granted, 2); // a factory and an object
            EXPECT_EQ(static_cast<I3DExShader*>(out)->Release(), 0u);
        } else {
            EXPECT_EQ(result, kMCNoSuchClass);
            EXPECT_EQ(out, nullptr);
        }
        EXPECT_EQ(fMemory.LiveBlocks(), blocks);
        EXPECT_FALSE(TestedLibrary().HasLiveComponents());
    }
}

TEST_P(ComponentLawsTest, TheRecordLiesBehindTheFacesAndAChangeAllocatesNothing)
{
    const auto shader = MakePlain();
    MCCountedPtr<IExDataExchanger> exchanger;
    MCCountedPtr<IMCUnknown> unknown;
    Query(*shader, IID_IExDataExchanger, exchanger);
    Query(*shader, IID_IMCUnknown, unknown);
    const char* const start = reinterpret_cast<const char*>(shader.Get());
    EXPECT_EQ(reinterpret_cast<const char*>(unknown.Get()) - start, 8);
    EXPECT_EQ(reinterpret_cast<const char*>(exchanger.Get()) - start, 32);
    EXPECT_EQ(static_cast<const char*>(exchanger->GetExtensionDataBuffer()) - start, 40);

    const int64_t allocations = fMemory.Allocations();
    EXPECT_EQ(exchanger->ExtensionDataChanged(), MC_S_OK); // empty slots are no failure
    EXPECT_EQ(fMemory.Allocations(), allocations);
}

TEST_P(ComponentLawsTest, NeedsAreAddedToWhatTheCallerSet)
{
    ShadingFlags flags;
    flags.fNeeds = 0x8001;
    EXPECT_EQ(MakePlain()->ReportNeeds(flags), MC_S_OK);
    EXPECT_EQ(flags.fNeeds & ~kNeedsAll, 0x8001);
    EXPECT_NE(flags.fNeeds & kNeedsAll, 0);
    EXPECT_EQ(flags.fDependencyBits, 0);
}

TEST_P(ComponentLawsTest, AHostCatchesWhatTheLibraryThrows)
{
    uint32_t caught = 0;
    try {
        MakePlain()->ForwardToDataComponent(nullptr);
    } catch (const TMCException& exception) {
        caught = exception.fErrorCode;
    }
    EXPECT_EQ(caught, kMCNoComponent);
    EXPECT_THAT(TakeReports(), ElementsAre("An exception is being thrown"));
}

INSTANTIATE_TEST_SUITE_P(Routed, ComponentLawsTest, testing::ValuesIn(kRoutedClasses),
    [](const auto& info) { return std::string(info.param.fName); });

class FactoryTest : public ShaderTest { };

TEST_F(FactoryTest, TakesAnyIdentifierAndMakesNothingOfAnUnknownOne)
{
    for (const GUID& id : {GUID{}, kUnknownID, kUnusedClassID}) {
        const auto factory = TestedLibrary().Factory(id);
        ASSERT_TRUE(factory);
        void* out = this;
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IMCUnknown, &out), kMCNoSuchClass);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(factory->LockServer(true), MC_S_OK);
    }
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(FactoryTest, HasTwoFacesAndIsGoneWhenAskedForAnother)
{
    void* out = this;
    EXPECT_EQ(TestedLibrary().fGetClassObject(kUnknownID, IID_I3DExShader, &out), kMCNoInterface);
    EXPECT_EQ(out, nullptr);
    EXPECT_FALSE(TestedLibrary().HasLiveComponents());

    const auto factory = TestedLibrary().Factory(kUnknownID);
    EXPECT_EQ(factory->QueryInterface(IID_IMCUnknown, &out), MC_S_OK);
    auto* const unknown = static_cast<IMCUnknown*>(out);
    EXPECT_EQ(unknown->QueryInterface(IID_IExClassFactory, &out), MC_S_OK);
    EXPECT_EQ(out, factory.Get());
    EXPECT_EQ(unknown->Release(), 2u);
    EXPECT_EQ(factory->Release(), 1u);
}

} // namespace
