#pragma once
#include "host/documents/DocumentFiles.h"
#include "host/documents/GltfFile.h"
#include "host/documents/GraphDocument.h"

namespace fernwick {

/// A document with the elements of its scene that a bake goes onto.
struct OntoModel {
    GraphDocument fDocument;
    std::vector<size_t> fTargets; ///< places among the scene's `Shapes`, ascending; each has a mesh
};

/// The targets as a glTF file has them, each at its place. They point into the document.
std::vector<GltfMesh> GltfMeshesOf(const OntoModel& onto, size_t set);

/// Puts a model into the scene of a document, for a bake onto it. Where the scene's `file` is the model, the scene
/// stays as it is. Where it has an element with the name of one of the model's nodes, that element gets the node's
/// shape. All other nodes of the model lie behind the elements of the scene, at the places that the model's file
/// gives them.
///
/// A document without a scene gets one: the model's nodes and, unless the model has elements of these names or a
/// camera, a "Lamp" from the upper left, a "Target" at the upper right and a "Camera" in front, in distances of the
/// model's size.
///
/// @param files  reads the model
/// @param model  a file as `ReadSceneFile` takes it; empty for the scene that the document has
/// @param node   the element that is baked onto, with all below it; empty for all of the model
/// Throws `GraphError` for an element that isn't there or has no triangles, and `SceneFileError`.
OntoModel PutOnto(const GraphDocument& document, DocumentFiles& files, const std::filesystem::path& model,
    const std::string& node);

} // namespace fernwick
