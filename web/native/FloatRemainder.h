#pragma once
#include <cmath>
#include <limits>

namespace fernwick {

/// What `std::fmod` answers, to the bit, in a fraction of the time that a C library takes which goes bit by bit through
/// the quotient. While that has less than 28 bits, a double holds its product with the 24 bits of the divisor, and the
/// difference too; two floats' quotient is off an integer by more than the division's error.
inline float FloatRemainder(float number, float divisor)
{
    constexpr float kMostQuotient = 0x1p28f;
    const double wideNumber = number;
    const double wideDivisor = divisor;
    const float size = std::fabs(divisor);
    if (!(std::fabs(number) < size * kMostQuotient) || size == std::numeric_limits<float>::infinity())
        return static_cast<float>(std::fmod(wideNumber, wideDivisor)); // no rounding: a float holds it
    const double remainder = wideNumber - std::trunc(wideNumber / wideDivisor) * wideDivisor;
    return std::copysign(static_cast<float>(remainder), number);
}

} // namespace fernwick
