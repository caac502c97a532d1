#pragma once
#include "frame/DebugReport.h"
#include <cmath>
#include <cstddef>
#include <cstdint>

/// Red, green and blue in float, not clamped. The default constructor leaves the channels unset.
struct TMCColorRGB {
    static const TMCColorRGB kBlack;
    static const TMCColorRGB kWhite;

    float fRed;
    float fGreen;
    float fBlue;

    TMCColorRGB& operator+=(const TMCColorRGB& other)
    {
        fRed += other.fRed;
        fGreen += other.fGreen;
        fBlue += other.fBlue;
        return *this;
    }
    TMCColorRGB& operator*=(float weight)
    {
        fRed *= weight;
        fGreen *= weight;
        fBlue *= weight;
        return *this;
    }
};
inline constexpr TMCColorRGB TMCColorRGB::kBlack{0, 0, 0};
inline constexpr TMCColorRGB TMCColorRGB::kWhite{1, 1, 1};
static_assert(offsetof(TMCColorRGB, fRed) == 0 && offsetof(TMCColorRGB, fGreen) == 4);
static_assert(offsetof(TMCColorRGB, fBlue) == 8 && sizeof(TMCColorRGB) == 12);

/// Red, green, blue and alpha in float, not clamped. The default constructor leaves the channels unset. Shading
/// assigns all four at once where it can: a load of sixteen bytes right behind four stores of four stalls.
struct TMCColorRGBA {
    static const TMCColorRGBA kOpaqueBlack;

    float fRed;
    float fGreen;
    float fBlue;
    float fAlpha;

    /// An index of 4 or more raises "elemNum<4" and gives the last channel.
    float& operator[](uint32_t elemNum) { return this->*kChannels[Checked(elemNum)]; }
    float operator[](uint32_t elemNum) const { return this->*kChannels[Checked(elemNum)]; }

    /// Stores red, green and blue and leaves the alpha.
    void SetRGB(float red, float green, float blue)
    {
        fRed = red;
        fGreen = green;
        fBlue = blue;
    }
    void SetRGB(float grey) { SetRGB(grey, grey, grey); }

    TMCColorRGBA& operator+=(const TMCColorRGBA& other)
    {
        fRed += other.fRed;
        fGreen += other.fGreen;
        fBlue += other.fBlue;
        fAlpha += other.fAlpha;
        return *this;
    }
    TMCColorRGBA& operator*=(float weight)
    {
        fRed *= weight;
        fGreen *= weight;
        fBlue *= weight;
        fAlpha *= weight;
        return *this;
    }

    /// With tolerance 0 all four channels must compare equal; above 0 each absolute difference must be within
    /// it. A NaN channel is never equal.
    bool Equals(const TMCColorRGBA& other, float tolerance = 0) const
    {
        for (const auto channel : kChannels) {
            const float left = this->*channel;
            const float right = other.*channel;
            const bool equal = tolerance > 0 ? std::fabs(left - right) <= tolerance : left == right;
            if (!equal)
                return false;
        }
        return true;
    }

private:
    using Channel = float TMCColorRGBA::*;
    static const Channel kChannels[4];

    static uint32_t Checked(uint32_t elemNum)
    {
        if (elemNum < 4)
            return elemNum;
        MC_REPORT("elemNum<4");
        return 3;
    }
};
inline constexpr TMCColorRGBA TMCColorRGBA::kOpaqueBlack{0, 0, 0, 1};
inline constexpr TMCColorRGBA::Channel TMCColorRGBA::kChannels[4]
    = {&TMCColorRGBA::fRed, &TMCColorRGBA::fGreen, &TMCColorRGBA::fBlue, &TMCColorRGBA::fAlpha};
static_assert(offsetof(TMCColorRGBA, fRed) == 0 && offsetof(TMCColorRGBA, fGreen) == 4);
static_assert(offsetof(TMCColorRGBA, fBlue) == 8 && offsetof(TMCColorRGBA, fAlpha) == 12);
static_assert(sizeof(TMCColorRGBA) == 16);

/// 0.3 red + 0.59 green + 0.11 blue, summed in double.
template <class Color> double ExactLuminance(const Color& color)
{
    const double red = color.fRed;
    const double green = color.fGreen;
    const double blue = color.fBlue;
    return 0.3 * red + 0.59 * green + 0.11 * blue;
}

/// The same stored as float: the number that every shader takes for a colour.
template <class Color> float Luminance(const Color& color)
{
    return static_cast<float>(ExactLuminance(color));
}
