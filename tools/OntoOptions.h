#pragma once
#include <string>

namespace CLI {
class App;
} // namespace CLI

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

/// The shaders of the graph that fill the material of a .glb file beside the outputs.
struct MaterialShader {
    const char* name; ///< of its map, as an output
    const char* option;
    std::string OntoOptions::*shader;
};

inline constexpr MaterialShader kMaterialShaders[] = {
    {"roughness", "--gltf-roughness", &OntoOptions::roughness},
    {"occlusion", "--gltf-occlusion", &OntoOptions::occlusion},
};
