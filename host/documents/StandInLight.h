#pragma once
#include "host/scene/Scene.h"

namespace fernwick {

/// Lights a scene that has shapes and a camera and no light at all, as models mostly have none: each name that no
/// element has becomes a distant light beside the camera, from where elements that are `lit` have their lamp too. It
/// is told among the notices.
/// @param names  of lights that shaders look for
void AddStandInLights(const std::vector<std::string>& names, SceneDescription& scene);

} // namespace fernwick
