#pragma once
#include <cmath>
#include <cstdint>
#include <limits>

/// What `std::fmod` answers, to the bit, in a fraction of the time that a C library takes which goes bit by bit through
/// the quotient. While that has less than 28 bits, a double holds its product with the 24 bits of the divisor, and the
/// difference too; two floats' quotient is off an integer by more than the division's error.
inline float FloatRemainder(float number, float divisor)
{
    constexpr float kMostQuotient = 0x1p28f;
    const float size = std::fabs(divisor);
    if (!(std::fabs(number) < size * kMostQuotient) || size == std::numeric_limits<float>::infinity())
        return std::fmod(number, divisor);
    const double wideNumber = number;
    const double wideDivisor = divisor;
    const auto quotient = static_cast<int32_t>(wideNumber / wideDivisor);
    const double remainder = wideNumber - quotient * wideDivisor;
    return std::copysign(static_cast<float>(remainder), number);
}
