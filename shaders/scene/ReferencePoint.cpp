#include "shaders/scene/ReferencePoint.h"

TVector3 HotPointAt(ITreeElement& tree, const TVector3& origin)
{
    TVector3 hotPoint;
    tree.GetHotPoint(hotPoint);
    TTreeTransform transform;
    tree.GetTreeTransform(transform); // hosts see the call; its scale has no effect
    return hotPoint + origin;
}

TVector3 ReferencePoint(
    int32_t reference, const ShadingIn& in, const TVector3& origin, const TVector3& hotPoint)
{
    if (reference == kReferenceSample)
        return in.fPointGlobal;
    return reference == kReferenceHotPoint ? hotPoint : origin;
}

SeenTree FindTreeFromReference(const SamplePlace& place, const TMCString255& name, int32_t reference)
{
    SeenTree seen;
    TVector3 origin;
    TVector3 hotPoint;
    const bool found = FindTreeByName(place.fScene, name, "temp_tree", seen.fTree);
    if (found) {
        origin = GlobalPosition(*place.fShaded);
        hotPoint = HotPointAt(*place.fShaded, origin);
    }
    seen.fLocation = ReferencePoint(reference, place.fIn, origin, hotPoint);
    if (!found)
        MC_REPORT("temp_tree"); // once for the reference point, once for the element itself
    return seen;
}
