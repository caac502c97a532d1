#pragma once
#include "frame/HostServices.h"
#include "frame/TBasicUnknown.h"
#include "host/library/Services.h"
#include "tests/support/ShaderTest.h"

/// For programs that link the pack itself: as long as this lives, the program's own copy of the pack has the
/// services of a host.
class StaticServices {
public:
    StaticServices() { QueryServices(fUtilities.Get()); }
    ~StaticServices() { ReleaseServices(); }
    StaticServices(const StaticServices&) = delete;
    StaticServices& operator=(const StaticServices&) = delete;

    fernwick::MemoryService& Memory() { return fUtilities->Memory(); }
    fernwick::DebugService& Debug() { return fUtilities->Debug(); }

    /// The texts of the debug reports since the last call, in order.
    std::vector<std::string> TakeReports() { return ::TakeReports(Debug()); }

private:
    MCCountedPtr<fernwick::Utilities> fUtilities = fernwick::MakeCounted<fernwick::Utilities>();
};

/// A test with services of its own, which leaves no component and no block behind.
class UnitTest : public testing::Test {
protected:
    StaticServices fServices;

    ~UnitTest() override
    {
        EXPECT_EQ(fServices.Memory().LiveBlocks(), 0);
        EXPECT_EQ(gLiveComponentCount, 0);
    }
    std::vector<std::string> TakeReports() { return fServices.TakeReports(); }
};
