#include "host/pictures/SRGBBytes.h"
#include <OpenImageIO/color.h>
#include <limits>

namespace fernwick {

namespace {

uint8_t ByFormula(float number) { return static_cast<uint8_t>(OIIO::linear_to_sRGB(number) * 255 + 0.5f); }

/// The least number from 0 to 1 that gives a byte, found by halving: the bits of floats ascend as they do.
float StartOf(uint8_t byte)
{
    uint32_t below = 0;
    uint32_t start = std::bit_cast<uint32_t>(1.0f);
    while (start - below > 1) {
        const uint32_t middle = below + (start - below) / 2;
        (ByFormula(std::bit_cast<float>(middle)) < byte ? below : start) = middle;
    }
    return std::bit_cast<float>(start);
}

} // namespace

const SRGBBytes& SRGBBytes::Get()
{
    static const SRGBBytes bytes;
    return bytes;
}

SRGBBytes::SRGBBytes()
{
    fStarts.front() = 0;
    for (size_t byte = 1; byte < 256; ++byte)
        fStarts[byte] = StartOf(static_cast<uint8_t>(byte));
    fStarts.back() = std::numeric_limits<float>::infinity();
    for (uint32_t cell = 0; cell < kCells; ++cell)
        fBytes[cell] = ByFormula(std::bit_cast<float>((kFirstCell + cell) << kBitsBelowCell));
}

} // namespace fernwick
