#pragma once
#include "host/documents/GraphDocument.h"
#include "tools/ShadeOptions.h"

/// The graph of one shader and what is plugged into it, in a scene with what the scene probes look for: "Shape", a
/// "Lamp", a "Camera" and a "Target", which they name unless told otherwise. Relative files are found from the current
/// folder. Throws `UsageError`, `fernwick::SettingError`, and `fernwick::GraphError` for a model that can't be read.
fernwick::GraphDocument MakeShadeDocument(const ShadeSettings& settings);
