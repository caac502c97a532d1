#pragma once
#include "frame/Vectors.h"
#include <bit>
#include <cmath>
#include <iterator>
#include <limits>
#include <span>

namespace fernwick::validation {

/// Random numbers that are the same on every machine, with a liking for those that break things.
class Random {
public:
    explicit Random(uint64_t seed) : fState(seed) { }
    /// Reads the numbers off `bytes`, which outlive it; behind their end it goes on by itself.
    explicit Random(std::span<const uint8_t> bytes) : fState(bytes.size()), fBytes(bytes) { }

    /// SplitMix64 (Steele, Lea and Flood 2014).
    /// @param count  how many of the lowest bytes matter
    uint64_t Bits(size_t count = 8)
    {
        if (!fBytes.empty())
            return BitsOfBytes(count);
        uint64_t bits = fState += 0x9E3779B97F4A7C15;
        bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
        bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
        return bits ^ bits >> 31;
    }
    uint32_t Below(uint32_t end)
    {
        return static_cast<uint32_t>(Bits(end <= 1 << 8 ? 1 : end <= 1 << 16 ? 2 : 4) % end);
    }
    bool OneIn(uint32_t count) { return Below(count) == 0; }
    /// 0 to 1, without 1.
    float Share() { return static_cast<float>(Below(1 << 24)) / (1 << 24); }

    /// An everyday number, an edge, a number of any size or any 32 bits.
    float Float()
    {
        using Limits = std::numeric_limits<float>;
        constexpr float kEdges[] = {0, -0.0f, 1, -1, 0.5f, 100, 180, 255, 360, Limits::quiet_NaN(),
            -Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(), Limits::lowest(),
            Limits::min(), Limits::denorm_min(), Limits::epsilon(), 2147483648.0f, -2147483904.0f, 1e10f};
        switch (Below(8)) {
        case 0:
        case 1:
            return kEdges[Below(std::size(kEdges))];
        case 2:
            return std::bit_cast<float>(static_cast<uint32_t>(Bits(4)));
        case 3:
            return (Share() - 0.5f) * std::ldexp(1.0f, static_cast<int>(Below(120)) - 60);
        case 4:
            return Share() * 100;
        default:
            return Share() * 2 - 0.5f;
        }
    }
    TVector3 Vector() { return {Float(), Float(), Float()}; }

    int32_t Integer()
    {
        constexpr int32_t kEdges[]
            = {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, -1, 65536, 256, 255};
        switch (Below(4)) {
        case 0:
            return kEdges[Below(std::size(kEdges))];
        case 1:
            return static_cast<int32_t>(Bits(4));
        default:
            return static_cast<int32_t>(Below(104)) - 3;
        }
    }

private:
    uint64_t fState;
    std::span<const uint8_t> fBytes;

    uint64_t BitsOfBytes(size_t count)
    {
        uint64_t bits = 0;
        for (; count > 0 && !fBytes.empty(); --count, fBytes = fBytes.subspan(1))
            bits = bits << 8 | fBytes.front();
        return bits;
    }
};

} // namespace fernwick::validation
