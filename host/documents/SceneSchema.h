#pragma once
#include "host/json/JsonNode.h"

namespace fernwick {

/// The part of the schema that describes what `ReadScene` reads. It refers to `SceneDefinitions`.
Json SceneSchema();

/// What stands under `$defs` for scenes, among it `vector3`.
Json SceneDefinitions();

} // namespace fernwick
