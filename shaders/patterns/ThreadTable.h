#pragma once
#include <cstdint>

constexpr int32_t kThreadsPerGroup = 5;

/// The threads of one group, warp or weft, across a tile of the cloth: half a gap, thread 0, gap, thread 1, and
/// so on to the last thread and half a gap. All in fractions of the tile.
struct ThreadTable {
    int32_t fCount = 0;                         ///< threads in use
    float fEdge[2 * kThreadsPerGroup + 1] = {}; ///< 2k and 2k + 1: start and end of thread k
    float fCenter[kThreadsPerGroup] = {};
    float fHalfWidth[kThreadsPerGroup] = {};

    /// Lays out the first `count` of `widths` with `gap` between them, in a unit of their own. Extreme numbers
    /// give edges that are not finite, and no other harm.
    /// @param count     0 to 5
    /// @param widthSum  scratch: the running width, 0 afterwards
    void Build(int32_t count, const int32_t (&widths)[kThreadsPerGroup], int32_t gap, float& widthSum);
};

/// The spans of one thread: the lengths over which it lies on top, between the crossings at which it dives
/// under the other group. In fractions of the tile along the thread. The first and the last span are one, cut
/// by the seam of the tile.
struct ThreadSpans {
    struct Span {
        float fStart = 0;
        float fEnd = 0;
        float fCenter = 0;
        float fHalfLength = 0;
    };

    int32_t fCrossings = 0; ///< one less than the spans in use
    Span fSpan[kThreadsPerGroup + 1];

    /// @param crossing  the threads of the other group
    /// @param dives     for each of them, whether this thread lies below it
    void Build(const ThreadTable& crossing, const bool (&dives)[kThreadsPerGroup]);
};

/// Where a coordinate lies on a thread: what both walks below answer.
struct ThreadProbe {
    int32_t fThread = 0; ///< from 1; 0 for a gap
    float fOffset = 0;   ///< signed distance from the centre, positive on the lower side
    float fHalf = 1;     ///< the half width or half length that goes with it
    float fT = 0;        ///< 0 to 1 from start to end
};

/// The walk across: finds the thread at `x`. A gap has thread 0, offset 0, half 1 and t 0; so has a NaN.
/// @param rounded  false leaves the offset 0
void WalkAcross(const ThreadTable& table, float x, bool rounded, ThreadProbe& probe);

/// The walk along: finds the span at `x` of the thread with this number, from 1. Leaves `probe.fThread`.
/// A gap, a thread that never dives and an `x` on no span have offset 0, half 1 and t 0.
/// @param spans  of the group's threads
void WalkAlong(int32_t thread, const ThreadSpans (&spans)[kThreadsPerGroup], float x, ThreadProbe& probe);
