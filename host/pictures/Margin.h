#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace fernwick {

/// A pixel beside covered ones, and the covered pixel whose colour it gets.
struct MarginPixel {
    int fX;
    int fY;
    int fFromX;
    int fFromY;

    bool operator==(const MarginPixel&) const = default;
};

/// Rows of a picture that tell which pixels are covered.
struct CoveredRows {
    int fWidth;
    int fTop;                        ///< the row of the picture that is the first of these
    std::vector<uint8_t> fIsCovered; ///< row by row, one a pixel

    int Bottom() const { return fTop + static_cast<int>(fIsCovered.size() / static_cast<size_t>(fWidth)); }
};

constexpr int kWidestMargin = 128; ///< pixels

/// Finds the pixels of some rows that aren't covered, and for each the nearest covered pixel, where one lies within
/// `margin` pixels of it, from centre to centre. Of those at one distance the uppermost counts, and of these the left
/// one. What comes out for a row depends only on rows up to `margin` above and below it, so that bands of a picture
/// come out as the whole of it does.
/// @param rows  the rows from `top` to `bottom`, and those beside them that the picture has, up to `margin` on
///              either side
/// @param top, bottom  rows of the picture; the last isn't among them
/// @param margin       0 to `kWidestMargin`
/// @return             row by row from the top, from left to right
std::vector<MarginPixel> FindMargin(const CoveredRows& rows, int top, int bottom, int margin);

} // namespace fernwick
