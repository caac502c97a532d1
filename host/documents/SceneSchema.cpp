#include "host/documents/SceneSchema.h"

namespace fernwick {

namespace {

constexpr const char* kDefinitions = R"({
    "keys": {
        "description": "A value that changes from frame to frame. It holds before the first key and behind the last.",
        "type": "object",
        "properties": {
            "keys": {"description": "A frame and the value there, each.", "type": "array", "minItems": 1,
                "items": {"type": "array", "prefixItems": [{"type": "number"}, {"type": ["number", "array"]}],
                    "minItems": 2, "maxItems": 2}},
            "between": {"description": "How it gets from key to key: evenly, with a gentle start and stop, or at once.",
                "enum": ["linear", "smooth", "step"]}
        },
        "required": ["keys"],
        "additionalProperties": false
    },
    "stepKeys": {
        "description": "A value that changes at once at some frames. It holds outside the keys.",
        "type": "object",
        "properties": {
            "keys": {"description": "A frame and the value from there on, each.", "type": "array", "minItems": 1,
                "items": {"type": "array", "prefixItems": [{"type": "number"},
                    {"type": ["number", "boolean", "string", "null", "array"]}], "minItems": 2, "maxItems": 2}},
            "between": {"const": "step"}
        },
        "required": ["keys"],
        "additionalProperties": false
    },
    "number": {"anyOf": [{"type": "number"}, {"$ref": "#/$defs/keys"}]},
    "vector3": {"anyOf": [{"type": "array", "items": {"$ref": "#/$defs/number"}, "minItems": 3, "maxItems": 3},
        {"$ref": "#/$defs/keys"}]},
    "length": {"anyOf": [{"type": "number", "exclusiveMinimum": 0}, {"$ref": "#/$defs/keys"}]},
    "span": {"anyOf": [{"type": "array", "items": {"anyOf": [{"type": "number", "minimum": 0},
        {"$ref": "#/$defs/keys"}]}, "minItems": 2, "maxItems": 2}, {"$ref": "#/$defs/keys"}]},
    "name": {"type": "string", "minLength": 1, "maxLength": 255},
    "up": {"description": "The axis of the file that points up.", "enum": ["Y", "Z"]},
    "position": {"$ref": "#/$defs/vector3", "description": "In the parent's coordinates, in scene units."},
    "rotation": {"$ref": "#/$defs/vector3", "description": "Degrees about the parent's X, then Y, then Z axis."},
    "lookAt": {"$ref": "#/$defs/vector3",
        "description": "Instead of a rotation: the point of the parent that the -Z axis aims at."},
    "hotPoint": {"$ref": "#/$defs/vector3", "description": "Offset from the element's origin."},
    "shaderName": {"anyOf": [{"$ref": "#/$defs/name"}, {"$ref": "#/$defs/stepKeys"}],
        "description": "The shader of its shape and of what lies below it; without any, the output of the graph."},
    "shading": {"anyOf": [{"enum": ["plain", "lit"]}, {"$ref": "#/$defs/stepKeys"}],
        "description": "The colour as it is, or under a lamp beside the camera."},
    "shape": {
        "description": "A shape with exact curvature, or all meshes of a model.",
        "type": "object",
        "properties": {"kind": {"enum": ["sphere", "torus", "saddle", "plane", "box", "model"]}},
        "required": ["kind"],
        "oneOf": [
            {"properties": {"kind": {"const": "sphere"}, "radius": {"$ref": "#/$defs/length"}},
                "additionalProperties": false},
            {"properties": {"kind": {"const": "torus"}, "radius": {"$ref": "#/$defs/length"},
                "tube": {"$ref": "#/$defs/length"}}, "additionalProperties": false},
            {"properties": {"kind": {"const": "saddle"}, "size": {"$ref": "#/$defs/length"},
                "height": {"$ref": "#/$defs/number"}}, "additionalProperties": false},
            {"properties": {"kind": {"const": "plane"}, "size": {"anyOf": [{"type": "array",
                "items": {"$ref": "#/$defs/length"}, "minItems": 2, "maxItems": 2},
                {"$ref": "#/$defs/keys"}]}}, "additionalProperties": false},
            {"properties": {"kind": {"const": "box"}, "size": {"anyOf": [{"type": "array",
                "items": {"$ref": "#/$defs/length"}, "minItems": 3, "maxItems": 3},
                {"$ref": "#/$defs/keys"}]}}, "additionalProperties": false},
            {"properties": {"kind": {"const": "model"}, "file": {"$ref": "#/$defs/name"}, "up": {"$ref": "#/$defs/up"},
                "scale": {"$ref": "#/$defs/length"}, "radius": {"$ref": "#/$defs/length",
                    "description": "Of a sphere around the model at the origin."}},
                "required": ["file"], "not": {"required": ["scale", "radius"]}, "additionalProperties": false}
        ]
    },
    "light": {
        "description": "A light for shaders to ask.",
        "type": "object",
        "properties": {
            "kind": {"enum": ["point", "spot", "distant"]},
            "color": {"$ref": "#/$defs/vector3"},
            "brightness": {"$ref": "#/$defs/number"},
            "range": {"$ref": "#/$defs/span",
                "description": "Where the light begins to fade and where it ends, in scene units."},
            "cone": {"$ref": "#/$defs/span",
                "description": "Where a spot begins to fade and where it ends, in degrees from its -Z axis."}
        },
        "additionalProperties": false,
        "allOf": [
            {"if": {"properties": {"kind": {"const": "distant"}}, "required": ["kind"]},
                "then": {"properties": {"range": false}}},
            {"if": {"required": ["cone"]},
                "then": {"properties": {"kind": {"const": "spot"}}, "required": ["kind"]}}
        ]
    },
    "camera": {
        "description": "A camera along the -Z axis, with Y up.",
        "type": "object",
        "properties": {"fieldOfView": {
            "anyOf": [{"type": "number", "minimum": 1, "maximum": 170}, {"$ref": "#/$defs/keys"}],
            "description": "Degrees from the lower to the upper edge."}},
        "additionalProperties": false
    },
    "element": {
        "type": "object",
        "properties": {
            "name": {"$ref": "#/$defs/name"},
            "position": {"$ref": "#/$defs/position"},
            "rotation": {"$ref": "#/$defs/rotation"},
            "lookAt": {"$ref": "#/$defs/lookAt"},
            "hotPoint": {"$ref": "#/$defs/hotPoint"},
            "shape": {"$ref": "#/$defs/shape"},
            "light": {"$ref": "#/$defs/light"},
            "camera": {"$ref": "#/$defs/camera"},
            "shader": {"$ref": "#/$defs/shaderName"},
            "shading": {"$ref": "#/$defs/shading"},
            "children": {"type": "array", "items": {"$ref": "#/$defs/element"}}
        },
        "required": ["name"],
        "not": {"required": ["rotation", "lookAt"]},
        "additionalProperties": false
    }
})";

constexpr const char* kScene = R"({
    "description": "The scene around the shaded object.",
    "type": "object",
    "properties": {
        "file": {
            "description": "A glTF, OBJ or other file; its nodes are the first elements.",
            "anyOf": [
                {"$ref": "#/$defs/name"},
                {"type": "object", "properties": {
                    "path": {"$ref": "#/$defs/name"},
                    "up": {"$ref": "#/$defs/up"},
                    "scale": {"description": "Of all lengths.", "type": "number", "exclusiveMinimum": 0},
                    "position": {"description": "Of all nodes, in scene units.", "type": "array",
                        "items": {"type": "number"}, "minItems": 3, "maxItems": 3},
                    "rotation": {"description": "Of all nodes: degrees about X, then Y, then Z.", "type": "array",
                        "items": {"type": "number"}, "minItems": 3, "maxItems": 3}},
                    "required": ["path"], "additionalProperties": false}
            ]
        },
        "materials": {
            "description": "The shaders of what has a material in the file, before those that nodes give.",
            "type": "object",
            "additionalProperties": {"anyOf": [{"$ref": "#/$defs/name"}, {"$ref": "#/$defs/stepKeys"}]}
        },
        "elements": {"type": "array", "items": {"$ref": "#/$defs/element"}},
        "nodes": {
            "description": "How named elements look: the name of a shader, or more.",
            "type": "object",
            "additionalProperties": {"anyOf": [
                {"$ref": "#/$defs/shaderName"},
                {"type": "object", "properties": {"shader": {"$ref": "#/$defs/shaderName"},
                    "shading": {"$ref": "#/$defs/shading"}, "hotPoint": {"$ref": "#/$defs/hotPoint"}},
                    "additionalProperties": false}
            ]}
        },
        "camera": {"anyOf": [{"$ref": "#/$defs/name"}, {"$ref": "#/$defs/stepKeys"}],
            "description": "The name of the element that the rendering runs from."},
        "background": {"$ref": "#/$defs/vector3",
            "description": "Red, green and blue in linear light; without it the background is transparent."},
        "shaded": {
            "description": "The instance that baked samples lie on.",
            "type": "object",
            "properties": {
                "name": {"$ref": "#/$defs/name"},
                "position": {"$ref": "#/$defs/position"},
                "rotation": {"$ref": "#/$defs/rotation"},
                "lookAt": {"$ref": "#/$defs/lookAt"},
                "hotPoint": {"$ref": "#/$defs/hotPoint"}
            },
            "not": {"required": ["rotation", "lookAt"]},
            "additionalProperties": false
        }
    },
    "dependentRequired": {"materials": ["file"]},
    "additionalProperties": false
})";

} // namespace

Json SceneDefinitions() { return Json::parse(kDefinitions); }

Json SceneSchema() { return Json::parse(kScene); }

} // namespace fernwick
