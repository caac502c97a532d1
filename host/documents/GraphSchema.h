#pragma once
#include "host/json/JsonNode.h"

namespace fernwick {

/// The JSON Schema, of the draft 2020-12, of graph documents: what `GraphDocument` reads, made from the tables of
/// all classes and sources. It knows every address of a field, and takes no document for wrong that can be read,
/// but some for right that can't, such as a graph with a slot that names no shader.
Json GraphSchema();

} // namespace fernwick
