#pragma once
#include "host/documents/GraphSequence.h"

/// What lies under a picture: a source as `--plug` takes it, such as `checker` or `color:#f80`, else the graph in a
/// file. Throws `UsageError` for a source that isn't one, and `fernwick::GraphError` for the file.
std::unique_ptr<fernwick::GraphSequence> MakeGround(const std::string& over);
