#pragma once
#include <cstdint>
#include <span>
#include <vector>

namespace fernwick {

/// A picture that a program gives a source instead of a file. It is taken as a file of its numbers would be.
struct GivenPicture {
    /// @param width, height  in pixels, above 0
    /// @param channels       1 for grey, 2 for grey and alpha, 3 for colours, 4 for colours and alpha
    /// @param numbers        row by row from the top, as many as there are pixels and channels; integers become 0 to 1
    GivenPicture(int width, int height, int channels, std::span<const uint8_t> numbers);
    GivenPicture(int width, int height, int channels, std::span<const uint16_t> numbers);
    GivenPicture(int width, int height, int channels, std::span<const float> numbers);

    int fWidth;
    int fHeight;
    int fChannels;
    bool fIsOfFloats; ///< linear, unless the source says otherwise; integers are encoded as sRGB
    std::vector<float> fNumbers;
};

} // namespace fernwick
