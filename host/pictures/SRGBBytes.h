#pragma once
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace fernwick {

/// The byte that holds a linear number as sRGB, without the power that the formula takes for each. A byte starts where
/// the formula says so, and no two start within one cell: these part each doubling of the numbers in 128.
class SRGBBytes {
public:
    /// The table, which is made when it is first asked for.
    static const SRGBBytes& Get();

    /// @param number  below 0 and NaN give 0, above 1 gives 255
    uint8_t Of(float number) const
    {
        const float held = number >= kFirst ? std::min(number, 1.0f) : kFirst;
        const uint8_t byte = fBytes[(std::bit_cast<uint32_t>(held) >> kBitsBelowCell) - kFirstCell];
        return static_cast<uint8_t>(byte + (held >= fStarts[byte + size_t{1}] ? 1 : 0));
    }

private:
    static constexpr uint32_t kBitsBelowCell = 23 - 7; // of the 23 behind a float's point
    static constexpr float kFirst = 0x1p-13f;          // it and all below are 0
    static constexpr uint32_t kFirstCell = std::bit_cast<uint32_t>(kFirst) >> kBitsBelowCell;
    static constexpr uint32_t kCells = (std::bit_cast<uint32_t>(1.0f) >> kBitsBelowCell) - kFirstCell + 1;

    std::array<float, 257> fStarts;     // the least number of each byte, and more than any behind them
    std::array<uint8_t, kCells> fBytes; // of the least number of each cell

    SRGBBytes();
};

} // namespace fernwick
