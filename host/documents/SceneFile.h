#pragma once
#include "host/scene/Scene.h"
#include <filesystem>
#include <functional>
#include <map>
#include <stdexcept>

namespace Assimp {
class Importer;
}

namespace fernwick {

/// A file that holds no scene, or one that can't be taken. The text names the file.
class SceneFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How a file is put into a scene.
struct SceneFileOptions {
    bool fZUp = false;        ///< the file's Z axis becomes Y, its Y axis -Z
    float fScale = 1;         ///< of all lengths, above 0
    TTransform3D fPlace = {}; ///< rigid; of all nodes, turned and scaled
    /// Shaders by names of materials. A node whose meshes get different ones becomes several shapes: the first stays
    /// with its element, of the others each gets an element below it, under its name, a dot and that of a material.
    std::map<std::string, std::string> fShaders = {};
};

struct SceneFile {
    std::vector<ElementDescription> fElements;
    std::vector<std::string> fNotices;   ///< what the file lacks or holds damaged, and what stands in for it
    std::vector<std::string> fMaterials; ///< names of all
    std::vector<std::filesystem::path> fFiles = {}; ///< that were opened: the file and those that it names
};

/// What is told the share of a file that is read, 0 to 1. It is destroyed when the file is read. What it throws ends the
/// reading, which throws then too.
using SceneFileProgress = std::function<void(double share)>;

/// From now on asks for each file that `ReadSceneFile` begins who is told of its progress. To be called before other
/// threads read files.
void ShowSceneFiles(std::function<SceneFileProgress(const std::filesystem::path& file)> begin);

/// Reads a scene with Assimp: glTF, OBJ and whatever else it knows. Each node becomes an element, with its meshes
/// as one shape, its light and its camera. Lengths stay as they are in the file.
///
/// An element's transform is rigid; scale, mirroring and shear of the nodes go into the points of the shapes, and
/// `GetTreeTransform` tells the scale. Hot points are at the origin. A mesh without UV gets its place in its
/// bounding box along X and Y; one without normals gets smooth ones, with creases above 60 degrees. A light's
/// brightness is its strongest channel; its range is taken where the file gives one (glTF), with the fading
/// from the light on. Cones are taken as angles from the axis. Lines and points are left out, and so are vertices that
/// no ray can meet, with a notice (see `SoundMesh`).
///
/// A file is checked before it is taken, and so is every regular file that it names; pipes and devices aren't read.
/// Throws `SceneFileError`.
SceneFile ReadSceneFile(const std::filesystem::path& file, const SceneFileOptions& options = {});
/// The same by an importer that has files of its own, without telling of progress.
SceneFile ReadSceneFile(
    const std::filesystem::path& file, Assimp::Importer& importer, const SceneFileOptions& options = {});

} // namespace fernwick
