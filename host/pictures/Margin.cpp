#include "host/pictures/Margin.h"
#include <algorithm>
#include <limits>
#include <span>

namespace fernwick {

namespace {

constexpr int kNowhere = std::numeric_limits<int>::max();

/// By column, how far above and below one row the nearest covered pixels lie; `kNowhere` where there are none.
struct ColumnReach {
    std::vector<int> above;
    std::vector<int> below;

    explicit ColumnReach(int width) : above(static_cast<size_t>(width), kNowhere), below(above) { }
};

std::span<const uint8_t> RowOf(const CoveredRows& rows, int y)
{
    const auto width = static_cast<size_t>(rows.fWidth);
    return std::span(rows.fIsCovered).subspan(static_cast<size_t>(y - rows.fTop) * width, width);
}

/// Looks for the nearest covered pixel from a place outwards, column by column.
MarginPixel NearestTo(int x, int y, const ColumnReach& reach, int margin)
{
    int nearest = margin * margin; // squared; nothing is found that is farther
    MarginPixel found{x, y, kNowhere, kNowhere};
    const auto take = [&](int fromX, int rowsAway, bool isAbove) {
        if (rowsAway > margin)
            return;
        const int fromY = isAbove ? y - rowsAway : y + rowsAway;
        const int squared = (fromX - x) * (fromX - x) + rowsAway * rowsAway;
        const bool isBefore = fromY < found.fFromY || (fromY == found.fFromY && fromX < found.fFromX);
        if (squared > nearest || (squared == nearest && !isBefore))
            return;
        nearest = squared;
        found.fFromX = fromX;
        found.fFromY = fromY;
    };
    for (int away = 0; away <= margin && away * away <= nearest; ++away)
        for (const int column : {x - away, x + away})
            if (column >= 0 && column < static_cast<int>(reach.above.size())) {
                take(column, reach.above[static_cast<size_t>(column)], true);
                take(column, reach.below[static_cast<size_t>(column)], false);
            }
    return found;
}

} // namespace

std::vector<MarginPixel> FindMargin(const CoveredRows& rows, int top, int bottom, int margin)
{
    std::vector<MarginPixel> found;
    if (margin == 0)
        return found;
    ColumnReach reach(rows.fWidth);
    const int first = std::max(rows.fTop, top - margin);
    const int end = std::min(rows.Bottom(), bottom + margin);
    const auto columns = static_cast<size_t>(rows.fWidth);
    std::vector<int> next(columns, first);    // from which on no covered row was looked for yet
    std::vector<int> last(columns, kNowhere); // covered row at or above
    for (int y = first; y < bottom; ++y) {
        const std::span<const uint8_t> row = RowOf(rows, y);
        for (size_t x = 0; x < columns; ++x) {
            if (row[x] != 0)
                last[x] = y;
            if (y < top)
                continue;
            if (next[x] <= y)
                for (next[x] = y; next[x] < end && RowOf(rows, next[x])[x] == 0;)
                    ++next[x];
            reach.above[x] = last[x] == kNowhere ? kNowhere : y - last[x];
            reach.below[x] = next[x] < end ? next[x] - y : kNowhere;
        }
        if (y < top)
            continue;
        for (int x = 0; x < rows.fWidth; ++x)
            if (row[static_cast<size_t>(x)] == 0)
                if (const MarginPixel pixel = NearestTo(x, y, reach, margin); pixel.fFromX != kNowhere)
                    found.push_back(pixel);
    }
    return found;
}

} // namespace fernwick
