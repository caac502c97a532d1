#pragma once
#include "frame/MCCountedPtr.h"
#include "frame/SceneServices.h"

/// A walk over an element and its descendants: each before its children, children in the order of the scene.
/// The siblings of the root are never visited. A null answer of the host ends a branch, or the walk.
class TreeWalker {
public:
    using Filter = bool (*)(ITreeElement* tree);

    /// @param root  outlives the walker; null for an empty walk
    explicit TreeWalker(ITreeElement* root) : fRoot(root) { }

    /// Starts, or starts again, and gives the root.
    ITreeElement* First();

    /// The next element, valid up to the call after; null when the walk has ended.
    ITreeElement* Next();

    int32_t VisitedCount() const { return fVisitedCount; }         ///< elements given out so far
    int16_t Depth() const { return static_cast<int16_t>(fDepth); } ///< levels below the root

private:
    ITreeElement* fCurrent = nullptr; // not counted; null when the walk has ended
    ITreeElement* fRoot;              // not counted
    [[maybe_unused]] Filter fFilters[2] = {};
    bool fDescend = true; // into the root's children
    [[maybe_unused]] bool fSecondFlag = false;
    int32_t fVisitedCount = 0;
    int32_t fDepth = 0;               // wide enough for any scene: the climb stops by it
    MCCountedPtr<ITreeElement> fHeld; // the current one, for hosts that make elements as they are asked for

    void GoTo(const MCCountedPtr<ITreeElement>& tree, int levels);
    ITreeElement* Visit();
};
