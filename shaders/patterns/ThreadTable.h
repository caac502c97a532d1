#pragma once
#include <cstdint>

constexpr int32_t kThreadsPerGroup = 5;

/// The threads of one group, warp or weft, across a tile of the cloth: half a gap, thread 0, gap, thread 1, and
/// so on to the last thread and half a gap. All in fractions of the tile.
struct ThreadTable {
    int32_t fCount = 0;                     ///< threads in use
    float fEdge[2 * kThreadsPerGroup] = {}; ///< 2k and 2k + 1: start and end of thread k, of those in use
    float fCenter[kThreadsPerGroup] = {};
    float fHalfWidth[kThreadsPerGroup] = {};

    /// Lays out the first `count` of `widths` with `gap` between them, in a unit of their own. Extreme numbers
    /// give edges that are not finite, and no other harm.
    /// @param count  0 to 5
    void Build(int32_t count, const int32_t (&widths)[kThreadsPerGroup], int32_t gap);
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
