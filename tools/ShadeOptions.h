#pragma once
#include "frame/Vectors.h"
#include "host/documents/ShapeScene.h"
#include "tools/BakeOptions.h"

/// What a command line tells of one shader.
struct ShadeSettings {
    std::string name;                             ///< of a class or source
    std::vector<std::string> sets;                ///< such as `fMode=KEYM`; a later one counts
    std::vector<std::string> plugs;               ///< such as `fSubShader=ramp:v`
    std::string shape = fernwick::kUVSquareShape; ///< out of `ShadeShapes`, or the file of a model
    bool isLit = false;                           ///< the shape is under a lamp
};

struct ShadeOptions {
    ShadeSettings settings;
    std::string sample; ///< that is printed; empty for none
    bool withStatistics = false;
    std::string library;
    BakeOptions bake;
};

/// The names of what a shader can be shaded on: the UV square, and shapes to render.
const std::vector<std::string>& ShadeShapes();

/// Reads a sample such as "0.25,0.75"; nothing for any other text.
std::optional<TVector2> ReadSample(const std::string& text);
