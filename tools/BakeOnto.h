#pragma once
#include "tools/BakeOptions.h"

/// What a command line tells about baking onto a model.
struct OntoOptions {
    std::string onto; ///< MODEL, MODEL#NODE or #NODE; empty for the UV square
    int margin = 16;  ///< in pixels
    int uvSet = 0;
    std::string gltf;      ///< a .glb file; empty for none
    std::string roughness; ///< shaders of the graph for its material; empty for none
    std::string occlusion;
};

/// How `--onto` works, for the help of a command with these options.
extern const char* const kOntoHelp;

void AddOntoOptions(CLI::App& command, OntoOptions& options);

/// Throws `UsageError` when options don't go together, without a model too.
void RequireSense(const OntoOptions& onto, const BakeOptions& options);

/// Bakes a document onto a model, into a picture file for each output and UDIM tile, and writes the .glb file if one is
/// wanted. Tells how the model lies on the pictures. Throws as `BakeToFile` does.
/// @param ground   what `--over` names; null for nothing
/// @param name     what users call the document
/// @param isFirst  of its frames: what all of them share is told with it
void BakeOntoModel(fernwick::Library& library, ReportSummary& reports,
    const fernwick::GraphDocument& document, const fernwick::GraphDocument* ground, const OntoOptions& onto,
    const BakeOptions& options, const std::string& name, bool isFirst);
