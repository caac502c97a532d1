#pragma once
#include "host/documents/GraphDocument.h"

/// The shape that is baked; the others are rendered.
constexpr const char* kUVSquareShape = "uv";

/// What a command line tells of one shader.
struct ShadeSettings {
    std::string name;                   ///< of a class or source
    std::vector<std::string> sets;      ///< such as `fMode=KEYM`; a later one counts
    std::vector<std::string> plugs;     ///< such as `fSubShader=ramp:v`
    std::string shape = kUVSquareShape; ///< out of `ShadeShapes`, or the file of a model
    bool isLit = false;                 ///< the shape is under a lamp
};

/// What a shader can be shaded on: the UV square, and shapes to render.
const std::vector<std::string>& ShadeShapes();

/// What is wrong with a shape, as the check of an option; empty for one of the above and for a file.
std::string CheckShape(const std::string& shape);

/// The graph of one shader and what is plugged into it, in a scene with what the scene probes look for: "Shape", a
/// "Lamp", a "Camera" and a "Target", which they name unless told otherwise. Relative files are found from the current
/// folder. Throws `UsageError`, and `fernwick::GraphError` for a model that can't be read.
fernwick::GraphDocument MakeShadeDocument(const ShadeSettings& settings);
