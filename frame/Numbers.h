#pragma once
#include <cstdint>

// Kept to the digit, the rounded ones too: finished pictures depend on their bits.
constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;
constexpr float kHalfPiInFloat = 1.5707964f;
constexpr double kRadiansPerDegree = 0.0174532925199433;
constexpr double kDegreesPerRadian = 57.2957795130823;

/// Cuts toward zero. NaN and anything outside the int32 range give the lowest int32.
inline int32_t CutToInt32(double number)
{
    if (number > -2147483649.0 && number < 2147483648.0)
        return static_cast<int32_t>(number);
    return INT32_MIN;
}

/// A four-character code: the first character is the high byte.
constexpr int32_t Code(const char (&text)[5])
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<unsigned char>(text[0])) << 24
        | static_cast<uint32_t>(static_cast<unsigned char>(text[1])) << 16
        | static_cast<uint32_t>(static_cast<unsigned char>(text[2])) << 8
        | static_cast<uint32_t>(static_cast<unsigned char>(text[3])));
}
