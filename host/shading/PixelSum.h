#pragma once
#include "frame/Colors.h"
#include <algorithm>

namespace fernwick {

/// 0 to 1; NaN gives 0.
inline float Share(float number) { return number >= 0 ? std::min(number, 1.0f) : 0.0f; }

/// The sum of one pixel's samples, colours times alpha.
struct PixelSum {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    /// Puts a colour behind what a sample has met so far.
    /// @param left  share of the sample that still shows what lies behind
    void Add(const TMCColorRGBA& color, double& left)
    {
        const double share = left * Share(color.fAlpha);
        if (!(share > 0)) // what is hidden may be anything
            return;
        red += share * color.fRed;
        green += share * color.fGreen;
        blue += share * color.fBlue;
        alpha += share;
        left -= share;
    }
    /// The mean, its alpha straight.
    TMCColorRGBA Color(int samples) const
    {
        if (!(alpha > 0))
            return {0, 0, 0, 0};
        return {static_cast<float>(red / alpha), static_cast<float>(green / alpha),
            static_cast<float>(blue / alpha), static_cast<float>(alpha / samples)};
    }
};

} // namespace fernwick
