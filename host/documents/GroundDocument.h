#pragma once
#include "host/documents/GraphSequence.h"
#include "host/documents/SettingText.h"

namespace fernwick {

/// What lies under a picture, not read yet.
struct Ground {
    Json fDocument;
    std::filesystem::path fFile; ///< where the graph is from; empty for a source
};

/// What `--over` names: a source as `--plug` takes it, such as `checker` or `color:#f80`, else the graph in a file.
/// Throws `SettingError` for a source that isn't one, and `GraphError` for the file.
Ground ReadGround(const std::string& over);

/// The graph itself. Reads the picture of a source. Throws as `ReadGround` does.
std::unique_ptr<GraphSequence> MakeGround(Ground ground);

} // namespace fernwick
