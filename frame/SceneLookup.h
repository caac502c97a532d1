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
/// `report`. The host is handed a copy of the name, which may lie in a record.
/// @return true when it was found
bool FindTreeByName(const MCCountedPtr<IScene>& scene, const TMCString255& name, const char* report,
    MCCountedPtr<ITreeElement>& tree);

/// Stores the name of the camera that the rendering runs from into `name`, which may lie in a record.
void ReadRenderingCameraName(IRenderingModule& renderingModule, TMCString255& name);

/// The element's position in world space.
TVector3 GlobalPosition(ITreeElement& tree);
