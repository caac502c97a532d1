#include "tests/support/ShaderTest.h"

fernwick::Library& TestedLibrary()
{
    static fernwick::Library library(FERNWICK_MODULE);
    return library;
}

std::vector<std::string> TakeReports() { return TakeReports(TestedLibrary().HostUtilities().Debug()); }

std::vector<std::string> TakeReports(fernwick::DebugService& debug)
{
    std::vector<std::string> texts;
    for (const fernwick::Report& report : debug.Reports())
        texts.push_back(report.message);
    debug.Clear();
    return texts;
}

ShaderTest::ShaderTest()
{
    fBlocksBefore = TestedLibrary().HostUtilities().Memory().LiveBlocks();
    TakeReports();
}

ShaderTest::~ShaderTest()
{
    EXPECT_EQ(TestedLibrary().HostUtilities().Memory().LiveBlocks(), fBlocksBefore);
    EXPECT_EQ(TestedLibrary().HostUtilities().Memory().DamagedBlocks(), 0);
    EXPECT_FALSE(TestedLibrary().HasLiveComponents());
}
