#pragma once
#include "host/geometry/UVPlane.h"
#include <stdexcept>
#include <string>

namespace fernwick {

/// A model that a glTF file can't hold. The text tells why.
class GltfError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A mesh at its place in the world.
struct GltfMesh {
    std::string fName;
    TTransform3D fPlace;
    UVMesh fMesh; ///< by the set that the pictures are laid out by
};

/// The pictures of a material, each the bytes of a .png file; empty for none.
struct GltfMaps {
    std::string fColor;     ///< encoded as sRGB; without, white
    std::string fNormal;    ///< green up
    std::string fRoughness; ///< grey, 0 to 1
    std::string fOcclusion; ///< grey, 1 where all light comes
};

/// Makes the bytes of a glTF 2.0 file (.glb) of meshes that share one material, with the pictures in it. It is opaque
/// and no metal; with a normal map, vertices with normals have tangents along U. The file's V runs down. Triangles
/// are counter-clockwise on the side of their normals. Normals that are zero or no numbers become (0, 0, 1), UV that
/// are no numbers 0. Throws `GltfError` for points that are no numbers, and above 4 GiB.
std::string GltfFile(const std::vector<GltfMesh>& meshes, const GltfMaps& maps);

} // namespace fernwick
