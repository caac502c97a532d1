#include "frame/FloatRemainder.h"
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

void ExpectSame(float number, float divisor)
{
    const float expected = std::fmod(number, divisor);
    const float remainder = FloatRemainder(number, divisor);
    if (std::isnan(expected))
        EXPECT_TRUE(std::isnan(remainder)) << number << " by " << divisor;
    else
        EXPECT_EQ(std::bit_cast<uint32_t>(remainder), std::bit_cast<uint32_t>(expected))
            << number << " by " << divisor;
}

TEST(UnitFloatRemainderTest, IsTheLibrarysToTheBit)
{
    std::mt19937 random(7);
    const auto anyFloat = [&] { return std::bit_cast<float>(static_cast<uint32_t>(random())); };
    for (int i = 0; i < 1'000'000; ++i) // of any size, NaN, infinities and the smallest among them
        ExpectSame(anyFloat(), anyFloat());
    std::uniform_real_distribution<float> coordinate(-100, 100);
    for (int i = 0; i < 1'000'000; ++i) { // by what repeats give, and right beside its multiples
        const float divisor = 1.0f / static_cast<float>(1 + random() % 100);
        const float multiple = static_cast<float>(random() % 1000) * divisor;
        ExpectSame(coordinate(random), divisor);
        ExpectSame(multiple, divisor);
        ExpectSame(std::nextafter(multiple, 0.0f), divisor);
        ExpectSame(-std::nextafter(multiple, 1000.0f), divisor);
        ExpectSame(coordinate(random) * 0x1p22f, divisor);
    }
    for (const float number : {0.0f, -0.0f, 1.0f, -1.0f, 0x1p-149f, 0x1.fffffep127f})
        for (const float divisor :
            {0.0f, -0.0f, 1.0f, -1.0f, 0x1p-149f, 0x1.fffffep127f, INFINITY, -INFINITY, NAN})
            ExpectSame(number, divisor);
}

} // namespace
