#include "shaders/patterns/ThreadTable.h"

ThreadTable LayThreads(int32_t count, const int32_t (&widths)[kThreadsPerGroup], int32_t gap)
{
    ThreadTable table;
    table.fCount = count;
    const double halfGap = gap / 2.0;
    float widthSum = static_cast<float>(halfGap);
    for (int32_t k = 0; k < count; ++k) {
        const int32_t width = widths[k];
        table.fEdge[2 * k] = widthSum;
        table.fEdge[2 * k + 1] = widthSum + static_cast<float>(width);
        widthSum += static_cast<float>(int64_t{width} + gap); // 64 bits: two int32 may not fit in one
    }
    widthSum = static_cast<float>(widthSum - halfGap);
    for (int32_t edge = 0; edge < 2 * count; ++edge)
        table.fEdge[edge] /= widthSum; // a tile of no width: infinite or NaN, and the walks still end

    for (int32_t k = 0; k < count; ++k) {
        table.fHalfWidth[k] = static_cast<float>((table.fEdge[2 * k + 1] - table.fEdge[2 * k]) / 2.0);
        table.fCenter[k] = table.fEdge[2 * k] + table.fHalfWidth[k];
    }
    return table;
}

ThreadSpans CutSpans(const ThreadTable& crossing, const bool (&dives)[kThreadsPerGroup])
{
    const auto finish = [](ThreadSpans::Span& span, float end) {
        span.fEnd = end;
        span.fHalfLength = (span.fEnd - span.fStart) / 2;
        span.fCenter = span.fStart + span.fHalfLength;
    };
    ThreadSpans spans;
    for (int32_t k = 0; k < crossing.fCount; ++k) {
        if (!dives[k])
            continue;
        finish(spans.fSpan[spans.fCrossings], crossing.fEdge[2 * k]);
        ++spans.fCrossings;
        spans.fSpan[spans.fCrossings].fStart = crossing.fEdge[2 * k + 1];
    }
    finish(spans.fSpan[spans.fCrossings], 1.0f);
    return spans;
}
