#include "shaders/scene/TreeWalker.h"
#include <bit>
#include <utility>

ITreeElement* TreeWalker::First()
{
    fCurrent = fRoot;
    fMark = nullptr;
    fVisits = 0;
    fDepth = 0;
    return Visit();
}

ITreeElement* TreeWalker::Next()
{
    if (fCurrent == nullptr)
        return nullptr;
    MCCountedPtr<ITreeElement> next;
    fCurrent->GetFirstChild(next.Address());
    if (next) {
        GoTo(std::move(next));
        ++fDepth;
        return Visit();
    }
    while (fCurrent != nullptr && fCurrent != fRoot && fDepth > 0) {
        fCurrent->GetNextSibling(next.Address());
        if (next) {
            GoTo(std::move(next));
            return Visit();
        }
        fCurrent->GetParent(next.Address());
        GoTo(std::move(next));
        --fDepth;
    }
    return fCurrent = nullptr;
}

void TreeWalker::GoTo(MCCountedPtr<ITreeElement>&& tree)
{
    fCurrent = tree.Get();
    fHeld[fTurn] = std::move(tree);
}

/// Gives the current element out, unless it is the mark again, which a sound tree never comes to. The mark moves up
/// each time that their number has doubled, so a walk in circles meets it however long the way into them is (Brent
/// 1980).
ITreeElement* TreeWalker::Visit()
{
    if (fCurrent == fMark || fVisits == kMostVisits)
        return fCurrent = nullptr;
    ++fVisits;
    if (fVisits >= kFirstMark && std::has_single_bit(fVisits)) {
        fMark = fCurrent;
        fTurn = 1 - fTurn; // the mark stays held
    }
    return fCurrent;
}
