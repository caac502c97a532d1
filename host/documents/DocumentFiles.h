#pragma once
#include "host/documents/SceneFile.h"
#include "host/sources/GivenPicture.h"
#include "host/sources/Sources.h"
#include <map>

namespace fernwick {

/// A model as one shape.
struct ModelShape {
    std::shared_ptr<const Geometry> fGeometry;
    std::vector<std::string> fNotices;              ///< what the file lacks and what stands in for it
    std::vector<std::filesystem::path> fFiles = {}; ///< that were opened
};

/// What the files that a document names hold, read once and kept for as long as each frame asks for it.
class DocumentFiles {
public:
    /// Gives pixels, or a mesh, in the place of the file that documents name `file`. A mesh is an element of a scene
    /// that has no other. To be called before what names it is read.
    void Give(const std::filesystem::path& file, std::shared_ptr<const GivenPicture> picture);
    void Give(const std::filesystem::path& file, std::shared_ptr<const Geometry> mesh);
    /// Takes back what was given; what was read with it stays as long as it is asked for.
    void Forget(const std::filesystem::path& file);

    /// Begins a frame: what the last one didn't ask for is forgotten.
    void BeginFrame();

    /// The files that this frame has asked for, with those that they name, in order; without what was given.
    std::vector<std::filesystem::path> Asked() const;

    /// The same as `ReadSceneFile`.
    SceneFile ReadScene(const std::filesystem::path& file, const SceneFileOptions& options = {});
    /// All meshes of a file as one (see `MergeMeshes`). Throws `SceneFileError`.
    ModelShape ReadShape(
        const std::filesystem::path& file, const SceneFileOptions& options, std::optional<float> radius);
    /// A source of the settings, the same object for the same settings. Throws `SourceError`.
    MCCountedPtr<IShellShader> MakeSource(const SourceKind& kind, std::span<const FieldSetting> settings);

private:
    struct Source {
        MCCountedPtr<IShellShader> fShader;
        std::vector<std::filesystem::path> fFiles;
    };

    /// Things by what they are made of.
    template <class Thing> struct Kept {
        std::map<std::string, Thing> now;    ///< asked for in this frame
        std::map<std::string, Thing> before; ///< only in the last one

        void BeginFrame();
        template <class MakeThing> const Thing& Get(const std::string& key, const MakeThing& make);
    };

    std::map<std::filesystem::path, std::shared_ptr<const GivenPicture>> fPictures;
    std::map<std::filesystem::path, std::shared_ptr<const Geometry>> fMeshes;
    Kept<SceneFile> fScenes;
    Kept<ModelShape> fShapes;
    Kept<Source> fSources;

    SceneFile Open(const std::filesystem::path& file, const SceneFileOptions& options) const;
    Source Make(const SourceKind& kind, std::span<const FieldSetting> settings) const;
};

} // namespace fernwick
