#include "host/validation/Checks.h"
#include "host/validation/Inspection.h"
#include <gtest/gtest.h>

using namespace fernwick;
using namespace fernwick::validation;

namespace {

// The validator runs its checks in processes of their own, where the thread sanitizer can't follow.
TEST(ThreadsTest, TwoObjectsOfAClassShareNothingAndTheModuleComesAndGoes)
{
    const Job job{.library = FERNWICK_MODULE};
    const Teller teller = [](const std::string& line) { ADD_FAILURE() << line; };
    Activity activity{};
    for (const Check& check : AllChecks()) {
        Inspection inspection(check, job, teller, activity);
        if (check.onModule == &CheckLifeCycle)
            CheckLifeCycle(inspection);
        for (const ParameterTable& table : AllClasses())
            if (check.onClass == &CheckTwoThreads && !table.fClassIDs.empty())
                CheckTwoThreads(inspection, table);
    }
}

} // namespace
