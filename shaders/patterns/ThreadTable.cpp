#include "shaders/patterns/ThreadTable.h"

void ThreadTable::Build(int32_t count, const int32_t (&widths)[kThreadsPerGroup], int32_t gap)
{
    fCount = count;
    const double halfGap = gap / 2.0;
    float widthSum = static_cast<float>(halfGap);
    for (int32_t k = 0; k < count; ++k) {
        const int32_t width = widths[k];
        fEdge[2 * k] = widthSum;
        fEdge[2 * k + 1] = widthSum + static_cast<float>(width);
        widthSum += static_cast<float>(int64_t{width} + gap); // 64 bits: two int32 may not fit in one
    }
    widthSum = static_cast<float>(widthSum - halfGap);
    for (int32_t edge = 0; edge < 2 * count; ++edge)
        fEdge[edge] /= widthSum; // a tile of no width: infinite or NaN, and the walks still end

    for (int32_t k = 0; k < count; ++k) {
        fHalfWidth[k] = static_cast<float>((fEdge[2 * k + 1] - fEdge[2 * k]) / 2.0);
        fCenter[k] = fEdge[2 * k] + fHalfWidth[k];
    }
}

void ThreadSpans::Build(const ThreadTable& crossing, const bool (&dives)[kThreadsPerGroup])
{
    const auto finish = [](Span& span, float end) {
        span.fEnd = end;
        span.fHalfLength = (span.fEnd - span.fStart) / 2;
        span.fCenter = span.fStart + span.fHalfLength;
    };
    fCrossings = 0;
    fSpan[0].fStart = 0;
    for (int32_t k = 0; k < crossing.fCount; ++k) {
        if (!dives[k])
            continue;
        finish(fSpan[fCrossings], crossing.fEdge[2 * k]);
        ++fCrossings;
        fSpan[fCrossings].fStart = crossing.fEdge[2 * k + 1];
    }
    finish(fSpan[fCrossings], 1.0f);
}
