#include "host/validation/FuzzCase.h"
#include "module/UnroutedClassIDs.h"
#include <filesystem>
#include <gtest/gtest.h>

namespace {

using namespace fernwick;
using namespace fernwick::validation;

/// `fernwick validate` sees the classes with routes alone.
TEST(FuzzCaseTest, FindsNothingInTheClassesWithoutRoutes)
{
    const Subject subject(std::filesystem::path(FERNWICK_MODULE).replace_filename("Fernwick_unrouted.so"));
    for (const ParameterTable& table : AllClasses()) {
        const GUID* const classID = UnroutedClassID(table.fName);
        if (classID == nullptr)
            continue;
        const uint64_t seeds = table.fName == "Corners" ? 4 : 100; // its objects are large
        for (uint64_t seed = 1; seed <= seeds; ++seed) {
            FuzzCase fuzz(table, seed);
            ASSERT_EQ(fuzz.Try(subject, *classID, std::vector<bool>(fuzz.FieldCount(), true)), "")
                << table.fName << ", seed " << seed;
        }
    }
}

} // namespace
