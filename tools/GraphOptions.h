#pragma once
#include "host/documents/GraphSettings.h"

namespace CLI {
class App;
} // namespace CLI

/// What the commands share that make pictures of a graph in a file.
struct GraphOptions {
    std::string graph;
    fernwick::GraphSettings settings;
    std::string frames; ///< such as `1-24`; empty for the first
};

/// Adds the graph, `--set`, `--plug` and `--frames`.
void AddGraphOptions(CLI::App& command, GraphOptions& options);

/// What these mean, for the help of a command with them.
extern const char* const kFramesHelp;
