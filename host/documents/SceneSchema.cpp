#include "host/documents/SceneSchema.h"

namespace fernwick {

namespace {

constexpr const char* kDefinitions = R"({
    "vector3": {"type": "array", "items": {"type": "number"}, "minItems": 3, "maxItems": 3},
    "length": {"type": "number", "exclusiveMinimum": 0},
    "span": {"type": "array", "items": {"type": "number", "minimum": 0}, "minItems": 2, "maxItems": 2},
    "name": {"type": "string", "minLength": 1, "maxLength": 255},
    "position": {"$ref": "#/$defs/vector3", "description": "In the parent's coordinates, in scene units."},
    "rotation": {"$ref": "#/$defs/vector3", "description": "Degrees about the parent's X, then Y, then Z axis."},
    "lookAt": {"$ref": "#/$defs/vector3",
        "description": "Instead of a rotation: the point of the parent that the -Z axis aims at."},
    "hotPoint": {"$ref": "#/$defs/vector3", "description": "Offset from the element's origin."},
    "shaderName": {"$ref": "#/$defs/name",
        "description": "The shader of its shape and of what lies below it; without any, the output of the graph."},
    "shading": {"enum": ["plain", "lit"], "description": "The colour as it is, or under a lamp beside the camera."},
    "shape": {
        "description": "A shape with exact curvature.",
        "type": "object",
        "properties": {"kind": {"enum": ["sphere", "torus", "saddle", "plane", "box"]}},
        "required": ["kind"],
        "oneOf": [
            {"properties": {"kind": {"const": "sphere"}, "radius": {"$ref": "#/$defs/length"}},
                "additionalProperties": false},
            {"properties": {"kind": {"const": "torus"}, "radius": {"$ref": "#/$defs/length"},
                "tube": {"$ref": "#/$defs/length"}}, "additionalProperties": false},
            {"properties": {"kind": {"const": "saddle"}, "size": {"$ref": "#/$defs/length"},
                "height": {"type": "number"}}, "additionalProperties": false},
            {"properties": {"kind": {"const": "plane"}, "size": {"type": "array",
                "items": {"$ref": "#/$defs/length"}, "minItems": 2, "maxItems": 2}}, "additionalProperties": false},
            {"properties": {"kind": {"const": "box"}, "size": {"type": "array",
                "items": {"$ref": "#/$defs/length"}, "minItems": 3, "maxItems": 3}}, "additionalProperties": false}
        ]
    },
    "light": {
        "description": "A light for shaders to ask.",
        "type": "object",
        "properties": {
            "kind": {"enum": ["point", "spot", "distant"]},
            "color": {"$ref": "#/$defs/vector3"},
            "brightness": {"type": "number"},
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
        "properties": {"fieldOfView": {"type": "number", "minimum": 1, "maximum": 170,
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
        "file": {"$ref": "#/$defs/name",
            "description": "A glTF, OBJ or other file; its nodes are the first elements."},
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
        "camera": {"$ref": "#/$defs/name", "description": "The name of the element that the rendering runs from."},
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
    "additionalProperties": false
})";

} // namespace

Json SceneDefinitions() { return Json::parse(kDefinitions); }

Json SceneSchema() { return Json::parse(kScene); }

} // namespace fernwick
