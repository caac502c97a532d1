#pragma once
#include "host/json/JsonNode.h"
#include "tools/GraphOptions.h"

/// Changes a document that isn't read yet. A field is that of the shader with the longest name that fits before it,
/// else of the output; sources are plugged in before fields are set. Relative files are found from the current
/// folder. What is given twice is told. A document that is no graph is left as it is, for who reads it to refuse.
/// Throws `UsageError`.
void Apply(const GraphSettings& settings, fernwick::Json& document);
