#pragma once
#include "frame/Numbers.h"
#include "frame/SceneLookup.h"

/// The codes of `fReference`: where a shader measures from. Any other code, "Opt2" among them, is the origin
/// of the shaded element.
constexpr int32_t kReferenceSample = Code("Opt1");   ///< `ShadingIn::fPointGlobal`
constexpr int32_t kReferenceHotPoint = Code("Opt3"); ///< hot point of the shaded element

/// The hot point of an element that stands at `origin`, in world coordinates. It moves with the element but
/// neither turns nor scales with it (kept: saved documents rely on it).
TVector3 HotPointAt(ITreeElement& tree, const TVector3& origin);

/// The point that `reference` stands for.
TVector3 ReferencePoint(
    int32_t reference, const ShadingIn& in, const TVector3& origin, const TVector3& hotPoint);

/// Where a sample lies in the scene, as `FindShadedTree` found it.
struct SamplePlace {
    const ShadingIn& fIn;
    MCCountedPtr<ITreeElement> fShaded; ///< null when the instance is no element
    MCCountedPtr<IScene> fScene;        ///< null then too, and outside any scene

    explicit SamplePlace(const ShadingIn& in) : fIn(in) { FindShadedTree(in, fShaded, fScene); }
};

/// A named element, and the point from which it is looked at.
struct SeenTree {
    MCCountedPtr<ITreeElement> fTree; ///< null when the scene has none of the name
    TVector3 fLocation;               ///< set all the same
};

/// Finds the element named `name` and, on the way, the point that `reference` stands for. Without the element, origin
/// and hot point are the zero vector, and "temp_tree" is raised twice.
/// @param place  in a scene
SeenTree FindTreeFromReference(const SamplePlace& place, const TMCString255& name, int32_t reference);
