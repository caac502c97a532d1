#pragma once
#include "host/documents/GraphDocument.h"
#include "host/library/Library.h"
#include "host/shading/Bake.h"
#include "tools/BakeOptions.h"

/// The job that the options describe. It is cancelled by Ctrl-C.
fernwick::BakeJob JobOf(const BakeOptions& options);

/// Throws `UsageError` when options don't go together.
void RequireSense(const BakeOptions& options);

/// Throws, as the other one does, for every file that is baked.
void RequireTarget(const BakeOptions& options);

/// Whether the name of the picture has a place for that of an output.
bool HasOutputMark(const BakeOptions& options);

/// The file of an output, with its name where the picture's name has a place for it.
std::string FileOfOutput(const BakeOptions& options, const std::string& output);

/// Runs a bake, and may put something between it and what takes its bands. Answers as `fernwick::Bake` does.
using BakeRunner = std::function<bool(const fernwick::BakeJob&, const fernwick::BakeSink&)>;

/// Bakes a document into the picture files, with a progress bar. Throws `Interrupted`, and whatever `fernwick::Bake`
/// throws, with `name` before it.
/// @param ground   what `--over` names; null for nothing
/// @param name     what users call the document
/// @param isFirst  of its frames: it is told when the pictures are empty
/// @param run      null for `fernwick::Bake`
void BakeToFile(fernwick::Library& library, const fernwick::GraphDocument& document,
    const fernwick::GraphDocument* ground, const BakeOptions& options, const std::string& name,
    bool isFirst = true, const BakeRunner& run = {});
