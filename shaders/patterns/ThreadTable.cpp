#include "shaders/patterns/ThreadTable.h"
#include <algorithm>

namespace {

float OffsetFrom(float center, float x)
{
    if (x > center)
        return -(x - center);
    if (center > x)
        return center - x;
    return 0;
}

/// The place of `x` in a span from `start`, in double.
float PlaceInSpan(double x, double start, float halfLength)
{
    return static_cast<float>((x - start) / (halfLength * 2.0));
}

} // namespace

void ThreadTable::Build(
    int32_t count, const int32_t (&widths)[kThreadsPerGroup], int32_t gap, float& widthSum)
{
    constexpr int32_t kFractions = 2 * kThreadsPerGroup; // kept: the last edge stays in the widths' unit
    fCount = count;
    std::fill_n(fEdge, kFractions, 0.0f);
    if (count == 0)
        return;

    const double halfGap = gap / 2.0;
    fEdge[0] = static_cast<float>(halfGap);
    widthSum = fEdge[0];
    for (int32_t k = 1; k <= count; ++k) {
        const int32_t width = widths[k - 1];
        fEdge[2 * k - 1] = widthSum + static_cast<float>(width);
        widthSum += static_cast<float>(int64_t{width} + gap); // 64 bits: two int32 may not fit in one
        fEdge[2 * k] = widthSum;
    }
    widthSum = static_cast<float>(widthSum - halfGap);
    for (int32_t edge = 0; edge < kFractions; ++edge)
        fEdge[edge] /= widthSum; // a tile of no width: infinite or NaN, and the walks still end
    widthSum = 0;

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

void WalkAcross(const ThreadTable& table, float x, bool rounded, ThreadProbe& probe)
{
    probe = {};
    float previousEnd = 0;
    for (int32_t k = 0; k < table.fCount; ++k) { // past the last thread there is but a gap
        const float start = table.fEdge[2 * k];
        const float end = table.fEdge[2 * k + 1];
        if (x >= previousEnd && start > x)
            return;
        if (x >= start && end > x) {
            probe.fThread = k + 1;
            if (rounded)
                probe.fOffset = OffsetFrom(table.fCenter[k], x);
            probe.fHalf = table.fHalfWidth[k];
            probe.fT = (x - start) / (end - start);
            return;
        }
        previousEnd = end;
    }
}

void WalkAlong(int32_t thread, const ThreadSpans (&spans)[kThreadsPerGroup], float x, ThreadProbe& probe)
{
    probe = {probe.fThread, 0, 1, 0};
    if (thread == 0)
        return;
    const int32_t crossings = spans[thread - 1].fCrossings;
    if (crossings == 0)
        return;
    const ThreadSpans::Span* const span = spans[thread - 1].fSpan;
    int32_t found = 0;
    while (found <= crossings && !(x >= span[found].fStart && span[found].fEnd > x))
        ++found;
    if (found > crossings)
        return;

    const ThreadSpans::Span& first = span[0];
    const ThreadSpans::Span& last = span[crossings];
    const float seamHalf = first.fHalfLength + last.fHalfLength; // of the span that the seam cuts
    float center = span[found].fCenter;
    if (found == 0) {
        center = first.fCenter - last.fHalfLength;
        probe.fHalf = seamHalf;
        probe.fT = PlaceInSpan(x, -(last.fHalfLength * 2.0), seamHalf);
    } else if (found == crossings) {
        center = last.fCenter + first.fHalfLength;
        probe.fHalf = seamHalf;
        probe.fT = PlaceInSpan(x, last.fStart, seamHalf);
    } else {
        probe.fHalf = span[found].fHalfLength;
        probe.fT = PlaceInSpan(x, span[found].fStart, probe.fHalf);
    }
    probe.fOffset = OffsetFrom(center, x);
}
