#pragma once
#include "host/json/ParseJson.h"

namespace fernwick {

/// The shape of `ShapeScene` that is the UV square.
constexpr const char* kUVSquareShape = "uv";

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

/// The shape of this name; null when there is none.
const NamedShape* FindShadeShape(std::string_view name);

/// The scene of a document that shows one shape, with what the scene probes look for: "Shape", a "Lamp" to the upper
/// left, a "Target" to the right and a "Camera" in front of it, all around the middle of the UV square, or four times as
/// large around the origin.
/// @param shape  an element with a shape; it gets its name and place
Json ShapeScene(Json shape, bool isSquare, bool isLit);

} // namespace fernwick
