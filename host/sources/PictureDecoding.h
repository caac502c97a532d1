#pragma once
#include "frame/Colors.h"
#include <OpenImageIO/color.h>
#include <array>

namespace fernwick {

/// Where red, green, blue and alpha lie in the numbers of a pixel.
struct PictureChannels {
    std::array<int, 3> colors;
    int alpha; ///< -1 for none
    int count; ///< from the first channel of the file to the last that is needed
};

/// How a pixel of a picture becomes a colour.
struct PictureDecoding {
    PictureChannels channels;
    bool isEncoded;
    bool isPremultiplied;

    TMCColorRGBA ColorOf(const float* pixel) const
    {
        TMCColorRGBA color;
        color.fAlpha = channels.alpha >= 0 ? pixel[channels.alpha] : 1;
        // Without an alpha there is nothing to divide by: light that covers nothing.
        const float divisor = isPremultiplied && color.fAlpha != 0 ? color.fAlpha : 1;
        for (uint32_t i = 0; i < 3; ++i) {
            const float number = pixel[channels.colors[i]] / divisor;
            color[i] = isEncoded ? OIIO::sRGB_to_linear(number) : number;
        }
        return color;
    }
};

} // namespace fernwick
