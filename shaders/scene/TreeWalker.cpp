#include "shaders/scene/TreeWalker.h"

ITreeElement* TreeWalker::First()
{
    fCurrent = fRoot;
    fHeld = nullptr;
    fVisitedCount = 0;
    fDepth = 0;
    return Visit();
}

ITreeElement* TreeWalker::Next()
{
    if (fCurrent == nullptr)
        return nullptr;
    MCCountedPtr<ITreeElement> next;
    if (fDescend || fCurrent != fRoot)
        fCurrent->GetFirstChild(next.Address());
    if (next) {
        GoTo(next, 1);
        return Visit();
    }
    while (fCurrent != nullptr && fCurrent != fRoot && fDepth > 0) { // the depth, for hosts with new pointers
        fCurrent->GetNextSibling(next.Address());
        if (next) {
            GoTo(next, 0);
            return Visit();
        }
        fCurrent->GetParent(next.Address());
        GoTo(next, -1);
    }
    return fCurrent = nullptr;
}

void TreeWalker::GoTo(const MCCountedPtr<ITreeElement>& tree, int levels)
{
    fHeld = tree;
    fDepth += levels;
    fCurrent = tree.Get();
}

ITreeElement* TreeWalker::Visit()
{
    if (fCurrent != nullptr)
        ++fVisitedCount;
    return fCurrent;
}
