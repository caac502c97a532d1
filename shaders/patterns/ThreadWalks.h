#pragma once
#include "shaders/patterns/ThreadTable.h"

// The walks that each sample makes, in a header so that they cost no calls.

/// Where a coordinate lies on a thread or in a span: what both walks below give.
struct ThreadProbe {
    float fOffset = 0; ///< signed distance from the centre, positive on the lower side
    float fHalf = 1;   ///< the half width or half length that goes with it
    float fT = 0;      ///< 0 to 1 from start to end
};

inline float OffsetFrom(float center, float x)
{
    if (x > center)
        return -(x - center);
    if (center > x)
        return center - x;
    return 0;
}

/// The place of `x` in a span from `start`, in double.
inline float PlaceInSpan(double x, double start, float halfLength)
{
    return static_cast<float>((x - start) / (halfLength * 2.0));
}

/// The walk across: finds the thread at `x`. A gap has offset 0, half 1 and t 0; so has a NaN.
/// @param rounded  false leaves the offset 0
/// @param probe    receives the place on the thread
/// @return the thread, from 1; 0 for a gap
inline int32_t WalkAcross(const ThreadTable& table, float x, bool rounded, ThreadProbe& probe)
{
    float previousEnd = 0;
    for (int32_t k = 0; k < table.fCount; ++k) { // past the last thread there is but a gap
        const float start = table.fEdge[2 * k];
        const float end = table.fEdge[2 * k + 1];
        if (x >= previousEnd && start > x)
            break;
        if (x >= start && end > x) {
            probe = {rounded ? OffsetFrom(table.fCenter[k], x) : 0, table.fHalfWidth[k],
                (x - start) / (end - start)};
            return k + 1;
        }
        previousEnd = end;
    }
    probe = {};
    return 0;
}

/// The walk along: finds the span at `x` of the thread with this number, from 1. A gap, a thread that never
/// dives and an `x` on no span have offset 0, half 1 and t 0.
/// @param spans  of the group's threads
inline ThreadProbe WalkAlong(int32_t thread, const ThreadSpans (&spans)[kThreadsPerGroup], float x)
{
    ThreadProbe probe;
    if (thread == 0)
        return probe;
    const int32_t crossings = spans[thread - 1].fCrossings;
    if (crossings == 0)
        return probe;
    const ThreadSpans::Span* const span = spans[thread - 1].fSpan;
    int32_t found = 0;
    while (found <= crossings && !(x >= span[found].fStart && span[found].fEnd > x))
        ++found;
    if (found > crossings)
        return probe;

    const ThreadSpans::Span& first = span[0];
    const ThreadSpans::Span& last = span[crossings];
    float center = span[found].fCenter;
    double start = span[found].fStart;
    probe.fHalf = span[found].fHalfLength;
    if (found == 0 || found == crossings)
        probe.fHalf = first.fHalfLength + last.fHalfLength; // of the span that the seam cuts
    if (found == 0) {
        center = first.fCenter - last.fHalfLength;
        start = -(last.fHalfLength * 2.0);
    } else if (found == crossings) {
        center = last.fCenter + first.fHalfLength;
    }
    probe.fOffset = OffsetFrom(center, x);
    probe.fT = PlaceInSpan(x, start, probe.fHalf);
    return probe;
}
