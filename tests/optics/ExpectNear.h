#pragma once
#include "optics/Triple.h"
#include <gtest/gtest.h>
#include <string>

inline void ExpectNear(
    const Float3& actual, const Float3& expected, float tolerance, const std::string& what = {})
{
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << what << " component " << i;
}
