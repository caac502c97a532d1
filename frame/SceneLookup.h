#pragma once
#include "frame/MCCountedPtr.h"
#include "frame/SceneServices.h"
#include "frame/ShadingIn.h"

/// Finds the element of the shaded instance, and the scene that holds it. Both pointers are emptied first, so
/// that nothing of an earlier sample is taken for this one's. A null instance raises "shadingIn.fInstance"; an
/// instance that is no element raises nothing.
void FindShadedTree(const ShadingIn& in, MCCountedPtr<ITreeElement>& tree, MCCountedPtr<IScene>& scene);

/// True when there is a scene; else raises "scene".
bool HasScene(const MCCountedPtr<IScene>& scene);

/// Finds the element of exactly this name in `scene`, which is not null; null when there is none. A miss raises
/// `report`.
/// @return true when it was found
bool FindTreeByName(const MCCountedPtr<IScene>& scene, const TMCString& name, const char* report,
    MCCountedPtr<ITreeElement>& tree);

/// The element's position in world space.
TVector3 GlobalPosition(ITreeElement& tree);
