#pragma once
#include "host/scene/Scene.h"

namespace fernwick {

/// All meshes of elements as one, in world space; null when there is none. It has UV where all of them have.
/// @param radius  the mesh is moved and scaled so that its bounding sphere (around the middle of its bounding box)
///                has this radius and lies around the origin; without any, it stays as it is
std::shared_ptr<const Geometry> MergeMeshes(
    const std::vector<ElementDescription>& elements, std::optional<float> radius);

} // namespace fernwick
