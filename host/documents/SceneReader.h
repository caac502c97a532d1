#pragma once
#include "host/documents/DocumentFiles.h"
#include "host/json/FieldReader.h"
#include "host/scene/Scene.h"

namespace fernwick {

/// Reads the scene of a document. Throws `GraphError`.
///
///     {"file": "room.gltf",
///      "elements": [{"name": "Ball", "position": [0, 1, 0], "rotation": [0, 90, 0], "hotPoint": [0, 0, 0],
///                    "shape": {"kind": "sphere", "radius": 1}, "shader": "cloth", "shading": "lit",
///                    "children": []},
///                   {"name": "Lamp", "position": [2, 3, 1], "lookAt": [0, 1, 0],
///                    "light": {"kind": "spot", "color": [1, 1, 1], "brightness": 1, "range": [1, 8],
///                              "cone": [20, 30]}},
///                   {"name": "Eye", "position": [0, 1, 5], "camera": {"fieldOfView": 40}}],
///      "materials": {"Leather": "weave"},
///      "nodes": {"Wall": "paint", "Door": {"shader": "wood", "shading": "plain", "hotPoint": [0, 1, 0]}},
///      "camera": "Eye", "background": [0.2, 0.2, 0.2], "shaded": {"name": "Sheet"}}
///
/// Everything may be left out. A file is given by its name, or as an object with its `path`, which axis is `up` in it
/// ("Y" or "Z"), a `scale` for its lengths, and a `position` and `rotation` of all of it. Elements of the file come
/// first, then `elements`. `materials` gives shaders to what has a material in the file, before what `nodes` says.
/// `nodes` says for named elements, which are mostly the file's, how they look; every element of the name takes it,
/// and what lies below them unless it says otherwise. Shapes are `sphere` (`radius`), `torus` (`radius`, `tube`),
/// `saddle` (`size`, `height`), `plane` (`size`, two numbers), `box` (`size`, three numbers) and `model` (all meshes of
/// a `file`, with `up` and `scale` or, for a sphere around it at the origin, a `radius`); lights are `point`, `spot`
/// and `distant`. `range` is where a light begins to fade and where it ends, `cone` the same as angles from its axis.
/// `shaded` is the instance that baked samples lie on.
///
/// @param names   the shaders of the document
/// @param folder  where relative file names start
/// @param files   what is read already, or gets it
SceneDescription ReadScene(const JsonNode& node, const ShaderNames& names,
    const std::filesystem::path& folder, DocumentFiles& files);

/// Names that several elements of a scene have, among them the root "Scene" and the shaded object, each with what
/// finds which; of very many the first. Shaders and `camera` look for elements by name.
std::vector<std::string> FindSharedNames(const SceneDescription& scene);

} // namespace fernwick
