#pragma once
#include "frame/Vectors.h"
#include "tools/BakeOptions.h"

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

struct ShadeOptions {
    ShadeSettings settings;
    std::string sample; ///< that is printed; empty for none
    bool withStatistics = false;
    std::string library;
    BakeOptions bake;
};

/// A shape as scenes describe it, turned so that it shows well. `Curvature` looks for a surface within a length of 1,
/// so that shapes are some units wide.
struct NamedShape {
    const char* name;
    const char* element; ///< JSON
};

/// The plane of the UV square is what is shaded, for rays to hit.
inline constexpr NamedShape kShadeShapes[] = {
    {kUVSquareShape, R"({"shape": {"kind": "plane", "size": [1, 1]}})"},
    {"sphere", R"({"rotation": [18, 0, 0], "shape": {"kind": "sphere", "radius": 2.1}})"},
    {"torus", R"({"rotation": [-38, 0, 0], "shape": {"kind": "torus", "radius": 1.7, "tube": 0.8}})"},
    {"plane", R"({"rotation": [-35, 0, 0], "shape": {"kind": "plane", "size": [4, 4]}})"},
    {"box", R"({"rotation": [28, 36, 0], "shape": {"kind": "box", "size": [2.8, 2.8, 2.8]}})"},
    {"saddle", R"({"rotation": [-42, 25, 0], "shape": {"kind": "saddle", "size": 3.6, "height": 1.2}})"},
};

/// The names of what a shader can be shaded on: the UV square, and shapes to render.
const std::vector<std::string>& ShadeShapes();

/// Reads a sample such as "0.25,0.75"; nothing for any other text.
std::optional<TVector2> ReadSample(const std::string& text);
