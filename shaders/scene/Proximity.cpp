#include "shaders/scene/Proximity.h"
#include "frame/Query.h"
#include "shaders/scene/TreeWalker.h"

/// What a group without a member counts as.
static constexpr float kFarAway = 10000000.0f;

bool Proximity::SameParams(const ProximityParams& other) const
{
    return fParams.fSubShader == other.fSubShader && fParams.fMaxDistance == other.fMaxDistance
        && fParams.fTargetName == other.fTargetName && fParams.fOffset == other.fOffset
        && fParams.fShaderStrength == other.fShaderStrength && fParams.fReference == other.fReference
        && fParams.fAxisX == other.fAxisX && fParams.fAxisY == other.fAxisY && fParams.fAxisZ == other.fAxisZ
        && fParams.fUseShader == other.fUseShader;
}

MCErr Proximity::ExtensionDataChanged()
{
    const MCErr status = ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds);
    fTargetNameCopy = fParams.fTargetName;
    fTargetNameLength = static_cast<int32_t>(fTargetNameCopy.GetLength());
    fRampStart = fParams.fMaxDistance - fParams.fFalloff;
    return status;
}

float Proximity::ShadeValue(float& value, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    value = 0;
    if (fTargetNameLength == 0)
        return 0.0f;
    const SamplePlace place(in);
    const MCCountedPtr<ITreeElement>& shaded = place.fShaded;
    if (!shaded) {
        if (in.fInstance != nullptr)
            MC_REPORT("shadingIn.fInstance"); // an instance that is no element counts as none
        return 0.0f;
    }

    const TVector3 origin = GlobalPosition(*shaded);
    TMCString255 name;
    shaded->GetNameScratch(name); // hosts see this call and the parent's; nothing reads the answers
    const TVector3 hotPoint = HotPointAt(*shaded, origin);
    MCCountedPtr<ITreeElement> parent;
    shaded->GetParent(parent.Address());
    fLocation = ReferencePoint(fParams.fReference, in, origin, hotPoint);

    float distance = fParams.fSingleObject ? DistanceToTarget(place.fScene) : DistanceToGroup(place.fScene);
    distance -= fParams.fOffset;
    if (fParams.fUseShader)
        distance += ShaderShift(fullArea, in);
    value = ValueAt(distance);
    return kFullCoverage;
}

/// A missing target reads as touching.
float Proximity::DistanceToTarget(const MCCountedPtr<IScene>& scene) const
{
    MCCountedPtr<ITreeElement> target;
    if (!HasScene(scene) || !FindTreeByName(scene, fTargetNameCopy, "objecttree", target))
        return 0;
    return DistanceTo(*target);
}

/// The nearest element whose name begins with the target's; the shaded element takes part.
float Proximity::DistanceToGroup(const MCCountedPtr<IScene>& scene) const
{
    MCCountedPtr<IGroup> group;
    if (scene) // without one the group is empty
        scene->GetRootGroup(group.Address());
    MCCountedPtr<ITreeElement> root;
    if (group)
        Query(*group, IID_ITreeElement, root);

    float best = kFarAway;
    const std::string_view target = fTargetNameCopy.View();
    TMCStringOf<1023> name;
    TreeWalker walker(root.Get());
    for (ITreeElement* tree = walker.First(); tree != nullptr; tree = walker.Next()) {
        tree->GetName(name);
        // The target has no zero byte, so a name that begins with it has none there.
        if (std::string_view(name.GetText(), target.size()) != target)
            continue;
        const float distance = DistanceTo(*tree);
        if (best > distance)
            best = distance;
    }
    return best;
}

/// From the reference point to the element's origin, over the axes that count.
float Proximity::DistanceTo(ITreeElement& tree) const
{
    const TVector3 target = GlobalPosition(tree);
    TVector3 probe = fLocation;
    if (!fParams.fAxisX)
        probe[0] = target[0];
    if (!fParams.fAxisY)
        probe[1] = target[1];
    if (!fParams.fAxisZ)
        probe[2] = target[2];
    return static_cast<float>(Length(target - probe));
}

/// What the sub-shader adds to the distance. A larger limit gets a smaller shift (kept: saved documents rely
/// on it).
float Proximity::ShaderShift(bool& fullArea, ShadingIn& in)
{
    TMCColorRGBA color = TMCColorRGBA::kOpaqueBlack;
    if (!ReadNumber(fShader, fShaderKinds, kOutputColor | kOutputSurface, fShaderValue, color, fullArea, in))
        fShaderValue = 0;
    fShaderValue = RepeatLastAboveOne(fShaderValue, fLastShaderValue);
    return static_cast<float>(fParams.fShaderStrength) * fShaderValue / fParams.fMaxDistance;
}

float Proximity::ValueAt(float distance) const
{
    float value = 0;
    if (distance > fParams.fMaxDistance)
        value = 0;
    else if (fParams.fFalloff == 0)
        value = 1 - distance / fParams.fMaxDistance;
    else if (fRampStart > distance)
        value = 1;
    else
        value = 1 - (distance - fRampStart) / fParams.fFalloff;

    if (value > 1)
        value = 1;
    if (value < 0)
        value = 0;
    return value;
}
