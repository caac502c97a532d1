#pragma once
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

/// What a command line changes in a graph.
struct GraphSettings {
    std::vector<std::string> sets;  ///< such as `drop.fWaves=5`; a later one counts
    std::vector<std::string> plugs; ///< such as `key.fSubShader=ramp:v`
};

/// What the commands share that make pictures of a graph in a file.
struct GraphOptions {
    std::string graph;
    GraphSettings settings;
    std::string frames; ///< such as `1-24`; empty for the first
};

/// Adds the graph, `--set`, `--plug` and `--frames`.
void AddGraphOptions(CLI::App& command, GraphOptions& options);

/// What these mean, for the help of a command with them.
extern const char* const kFramesHelp;
