#include "host/library/Module.h"
#include "tests/support/ShaderTest.h"
#include <sstream>
#ifndef _WIN32
#include "tests/support/Shell.h"
#endif

namespace {

constexpr GUID kKeyID = {0x379752D6, 0xC5EB, 0x4173, {0xB3, 0xE4, 0xFF, 0x72, 0x77, 0x69, 0x48, 0x3A}};

using fernwick::IsModuleLoaded;
using fernwick::Library;
using fernwick::MakeCounted;
using fernwick::ShaderWrapper;
using fernwick::Utilities;
using testing::ElementsAre;

/// What became of a host's services, in order: the number of one that was asked for, minus the number of one that
/// was released, and what was read from them.
std::vector<int32_t> gEvents;
constexpr int32_t kHostRecord = 100;
constexpr int32_t kDebugSetting = 200;

template <class Face, int32_t kNumber = 0> class RecordingService : public Face {
public:
    int32_t fNumber = kNumber;

    MCErr QueryInterface(const GUID&, void**) override { return kMCNoInterface; }
    uint32_t AddRef() override { return 2; }
    uint32_t Release() override
    {
        gEvents.push_back(-fNumber);
        return 1;
    }
};

class RecordingDebug final : public RecordingService<IDebugUtilities, 7> {
    void Report(const char*, int32_t, const char*) override { }
    void ReportFloat(const char*, int32_t, const char*, float) override { }
    void ReportWide(const char*, int32_t, const char16_t*) override { }
    void ReportWideFloat(const char*, int32_t, const char16_t*, float) override { }
    int32_t GetDebugSetting(int32_t index) override
    {
        gEvents.push_back(kDebugSetting + index);
        return 0;
    }
};

class RecordingMemory final : public RecordingService<IMemoryUtilities, 8> {
    void* AllocateObject(uint32_t) override { return nullptr; }
    void FreeObject(void*) override { }
    void* AllocateBlock(uint32_t) override { return nullptr; }
    void FreeBlock(void*) override { }
};

class RecordingShSafe final : public RecordingService<IShSafeUtilities, 9> {
    void GetHostRecord(uint32_t&) override { gEvents.push_back(kHostRecord); }
    int32_t QueryHost(uint32_t) override { return 0; }
};

/// Gives all twenty-one services, with a failure that nobody is to look at.
class RecordingUtilities final : public RecordingService<IMCUnknown> {
public:
    /// @param mark  added to the numbers of the services when they are released
    explicit RecordingUtilities(int32_t mark = 0) : fMark(mark)
    {
        fDebug.fNumber += mark;
        fMemory.fNumber += mark;
        fShSafe.fNumber += mark;
    }

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        int32_t number = 1;
        while (!SameGuid(id, kServiceIDs[number - 1]))
            ++number;
        gEvents.push_back(number);
        fOthers[number].fNumber = number + fMark;
        IMCUnknown* const own[] = {&fDebug, &fMemory, &fShSafe};
        *out = number >= 7 && number <= 9 ? own[number - 7] : &fOthers[number];
        return kMCNoInterface;
    }

private:
    int32_t fMark;
    RecordingDebug fDebug;
    RecordingMemory fMemory;
    RecordingShSafe fShSafe;
    RecordingService<IShellUtilities> fOthers[kServiceCount + 1];
};

TEST(ExportsTest, ServicesAreTakenAndReleasedInTheSettledOrders)
{
    RecordingUtilities utilities;
    Library library(FERNWICK_MODULE, {});
    gEvents.clear();
    EXPECT_EQ(library.fInit(&utilities), MC_S_OK);
    EXPECT_THAT(gEvents,
        ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, kHostRecord,
            kDebugSetting, kDebugSetting + 1, kDebugSetting + 2, kDebugSetting + 3, kDebugSetting + 4,
            kDebugSetting + 5));
    EXPECT_EQ(library.fCleanUpExceptionTranslator(), MC_S_OK);
    EXPECT_EQ(library.fInitExceptionTranslator(), MC_S_OK);

    gEvents.clear();
    EXPECT_EQ(library.fCleanUp(), MC_S_OK);
    EXPECT_THAT(gEvents,
        ElementsAre(
            -10, -5, -8, -7, -9, -4, -3, -2, -1, -6, -17, -16, -15, -14, -13, -12, -11, -21, -18, -19, -20));
    library.fInit(&utilities);
    gEvents.clear();
    EXPECT_EQ(library.fCleanUp(), MC_S_OK); // once in the life of the module
    EXPECT_THAT(gEvents, testing::IsEmpty());
}

TEST(ExportsTest, ASecondInitTakesTheServicesAnewAndReleasesNone)
{
    constexpr int32_t kMark = 1000;
    RecordingUtilities first, second(kMark);
    Library library(FERNWICK_MODULE, {});
    gEvents.clear();
    library.fInit(&first);
    const std::vector<int32_t> taken = std::exchange(gEvents, {});
    EXPECT_EQ(library.fInit(&second), MC_S_OK);
    EXPECT_EQ(gEvents, taken);

    gEvents.clear();
    EXPECT_EQ(library.fCleanUp(), MC_S_OK);
    EXPECT_THAT(gEvents, testing::SizeIs(kServiceCount));
    EXPECT_THAT(gEvents, testing::Each(testing::Lt(-kMark))); // the second's alone
}

TEST(ExportsTest, AnyOneServiceCanBeWithheldAndTheModuleLeavesTheProcess)
{
    for (int32_t withheld = 1; withheld <= kServiceCount; ++withheld) {
        SCOPED_TRACE(withheld);
        const auto utilities = MakeCounted<Utilities>();
        utilities->Withhold(withheld);
        {
            Library library(FERNWICK_MODULE, utilities);
            EXPECT_TRUE(IsModuleLoaded(FERNWICK_MODULE));
            EXPECT_EQ(utilities->Asked().size(), 21u);
            const bool hasMemory = withheld != 8;
            EXPECT_EQ(static_cast<bool>(ShaderWrapper::Make(library, kKeyID)), hasMemory);
            EXPECT_FALSE(library.HasLiveComponents());
        }
        EXPECT_FALSE(IsModuleLoaded(FERNWICK_MODULE));
        EXPECT_EQ(utilities->Memory().LiveBlocks(), 0);
    }
}

TEST(ExportsTest, AHostThatGivesNothingGetsNothing)
{
    const auto mute = MakeCounted<Utilities>();
    mute->WithholdAll();
    for (const auto& utilities : {mute, MCCountedPtr<Utilities>()}) {
        Library library(FERNWICK_MODULE, utilities);
        EXPECT_EQ(library.fCanUnloadNow(), 0u);
        void* out = &library;
        EXPECT_EQ(library.fGetClassObject(kKeyID, IID_IExClassFactory, &out), kMCNoSuchClass);
        EXPECT_EQ(out, nullptr);
    }
}

TEST(ExportsTest, NullUtilitiesRaiseAReportAndLeaveTheServices)
{
    Library library(FERNWICK_MODULE);
    TakeReports(library.HostUtilities().Debug());
    EXPECT_EQ(library.fInit(nullptr), MC_S_OK);
    EXPECT_THAT(TakeReports(library.HostUtilities().Debug()), ElementsAre("utilities"));
    EXPECT_TRUE(library.Factory(kKeyID));
    EXPECT_EQ(library.fCleanUp(), MC_S_OK);
    EXPECT_FALSE(library.Factory(kKeyID)); // no memory service any more
}

TEST(ExportsTest, TheModuleStaysWhileAFactoryOrAShaderLives)
{
    Library library(FERNWICK_MODULE);
    EXPECT_EQ(library.fCanUnloadNow(), 0u);
    auto factory = library.Factory(kKeyID);
    EXPECT_EQ(library.fCanUnloadNow(), 1u);
    auto wrapper = ShaderWrapper::Make(library, kKeyID);
    factory = nullptr;
    EXPECT_EQ(library.fCanUnloadNow(), 1u);
    wrapper = nullptr;
    EXPECT_EQ(library.fCanUnloadNow(), 0u);
}

#ifndef _WIN32 // there, WindowsModule.cmake looks
/// The names that the module exports, or those that it takes from elsewhere; none where they can't be listed.
std::vector<std::string> Names(const std::string& which)
{
    const ShellAnswer answer = Shell("nm -D --format=posix " + which + " \"" FERNWICK_MODULE "\"");
    std::vector<std::string> names;
    std::istringstream lines(answer.text);
    for (std::string line; answer.status == 0 && std::getline(lines, line);)
        names.push_back(line.substr(0, line.find_first_of(" @")));
    return names;
}

TEST(ExportsTest, SixNamesAndNoMore)
{
    std::vector<std::string> names = Names("--defined-only");
    if (names.empty())
        GTEST_SKIP() << "nm can't be run";
    // Two underscores begin the sanitizers' own.
    std::erase_if(names, [](const std::string& name) { return name.starts_with("__"); });
    EXPECT_THAT(names,
        testing::UnorderedElementsAre("MCDllInit", "MCDllCleanUp", "MCDllInitExceptionTranslator",
            "MCDllCleanUpExceptionTranslator", "MCDllGetClassObject", "MCDllCanUnloadNow"));
}

TEST(ExportsTest, TheModuleTakesNoLock)
{
    using testing::HasSubstr; // the first guards a static that is made at its first use
    const auto isLock = testing::AnyOf(HasSubstr("__cxa_guard"), HasSubstr("pthread_"));
    const std::vector<std::string> names = Names("--undefined-only");
    if (names.empty())
        GTEST_SKIP() << "nm can't be run";
    EXPECT_THAT(names, testing::Each(testing::Not(isLock)));
}
#endif

} // namespace
