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

bool FindTreeFromReference(const ShadingIn& in, ITreeElement& shaded, const MCCountedPtr<IScene>& scene,
    const TMCString255& name, int32_t reference, MCCountedPtr<ITreeElement>& tree, TVector3& location)
{
    TVector3 origin;
    TVector3 hotPoint;
    const bool found = FindTreeByName(scene, name, "temp_tree", tree);
    if (found) {
        origin = GlobalPosition(shaded);
        hotPoint = HotPointAt(shaded, origin);
    }
    location = ReferencePoint(reference, in, origin, hotPoint);
    if (!found)
        MC_REPORT("temp_tree"); // once for the reference point, once for the element itself
    return found;
}
