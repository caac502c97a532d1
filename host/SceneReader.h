#pragma once
#include "host/JsonNode.h"
#include "host/Scene.h"

namespace fernwick {

/// Reads the scene of a document: `elements`, each with `name`, `position`, `rotation`, `hotPoint` and
/// `children`; `shaded`, the instance that samples lie on; and `camera`, the name of one of them. Throws
/// `GraphError`.
SceneDescription ReadScene(const JsonNode& node);

} // namespace fernwick
