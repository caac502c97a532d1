#pragma once
#include "host/documents/DocumentFiles.h"
#include "tools/OntoOptions.h"
#include "tools/pictures/BakeToFile.h"

/// Throws `UsageError` when options don't go together, without a model too.
void RequireSense(const OntoOptions& onto, const BakeOptions& options);

/// Bakes a document onto a model, into a picture file for each output and UDIM tile, and writes the .glb file if one is
/// wanted. Tells how the model lies on the pictures. Throws as `BakeToFile` does.
/// @param files    reads the model
/// @param ground   what `--over` names; null for nothing
/// @param name     what users call the document
/// @param isFirst  of its frames: what all of them share is told with it
void BakeOntoModel(fernwick::Library& library, const fernwick::GraphDocument& document,
    fernwick::DocumentFiles& files, const fernwick::GraphDocument* ground, const OntoOptions& onto,
    const BakeOptions& options, const std::string& name, bool isFirst);
