#pragma once
#include "host/documents/ModelScene.h"
#include <string>
#include <vector>

namespace fernwick {

/// A picture file of a material.
struct MaterialPicture {
    std::string fOutput; ///< what it shows: `color` or `main`, `normal`, `roughness` or `occlusion`
    std::string fFile;   ///< a .png
};

/// Writes what was baked onto as a .glb file (see `GltfFile`), with pictures in it, of which it takes those that show
/// what a material has, the last one of each. Makes the folder. Throws `GltfError`, and `FileError` for what can't be
/// read or written.
/// @param set  of UV, that the pictures are laid out by
void WriteModel(const std::filesystem::path& file, const OntoModel& onto, size_t set,
    const std::vector<MaterialPicture>& pictures);

} // namespace fernwick
