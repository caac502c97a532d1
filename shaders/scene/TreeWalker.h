#pragma once
#include "frame/MCCountedPtr.h"
#include "frame/SceneServices.h"

/// A walk over an element and its descendants: each before its children, children in the order of the scene.
/// The siblings of the root are never visited. A null answer of the host ends a branch, or the walk.
///
/// Links that contradict each other don't keep it going. Beyond `kFirstMark` elements it ends soon after it has come
/// round to one that it has given out, and in any case at `kMostVisits`, for hosts that make elements as they are asked
/// for.
class TreeWalker {
public:
    static constexpr uint32_t kFirstMark = 1
        << 16; ///< elements; up to these a walk holds the current one alone
    static constexpr uint32_t kMostVisits = 1 << 24; ///< elements; more than a scene holds

    /// @param root  outlives the walker; null for an empty walk
    explicit TreeWalker(ITreeElement* root) : fRoot(root) { }
    TreeWalker(const TreeWalker&) = delete;
    TreeWalker& operator=(const TreeWalker&) = delete;

    /// Starts, or starts again, and gives the root.
    ITreeElement* First();

    /// The next element, valid up to the call after; null when the walk has ended.
    ITreeElement* Next();

private:
    ITreeElement* fCurrent = nullptr; // not counted; null when the walk has ended
    ITreeElement* fRoot;              // not counted
    ITreeElement* fMark = nullptr;    // not counted; an element given out before
    uint32_t fVisits = 0;
    uint32_t fDepth = 0; // levels below the root: the climb stops by it on hosts with new pointers
    // The current element and the mark, in turns. What a host makes as it is asked for lives no longer than it is held.
    MCCountedPtr<ITreeElement> fHeld[2];
    uint32_t fTurn = 0;

    void GoTo(MCCountedPtr<ITreeElement>&& tree);
    ITreeElement* Visit();
};
