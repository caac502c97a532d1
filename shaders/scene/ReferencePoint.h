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

/// Finds the element named `name` and, on the way, the reference point. Without the element, origin and hot
/// point are the zero vector, and "temp_tree" is raised twice.
/// @param shaded    the shaded element, in `scene`, which is not null
/// @param location  receives the reference point, found or not
/// @return true when the element was found
bool FindTreeFromReference(const ShadingIn& in, ITreeElement& shaded, const MCCountedPtr<IScene>& scene,
    const TMCString255& name, int32_t reference, MCCountedPtr<ITreeElement>& tree, TVector3& location);
