#pragma once
#include "host/documents/SceneFile.h"
#include "host/sources/GivenPicture.h"
#include "host/sources/Sources.h"
#include <map>

namespace fernwick {

/// A model as one shape.
struct ModelShape {
    std::shared_ptr<const Geometry> fGeometry;
    std::vector<std::string> fNotices; ///< what the file lacks and what stands in for it
};

/// What the files that a document names hold, read once and kept for as long as each frame asks for it.
class DocumentFiles {
public:
    /// Gives pixels, or a mesh, in the place of the file that documents name `file`. A mesh is an element of a scene
    /// that has no other. To be called before anything is read.
    void Give(const std::filesystem::path& file, std::shared_ptr<const GivenPicture> picture);
    void Give(const std::filesystem::path& file, std::shared_ptr<const Geometry> mesh);

    /// Begins a frame: what the last one didn't ask for is forgotten.
    void BeginFrame();

    /// The same as `ReadSceneFile`.
    SceneFile ReadScene(const std::filesystem::path& file, const SceneFileOptions& options = {});
    /// All meshes of a file as one (see `MergeMeshes`). Throws `SceneFileError`.
    ModelShape ReadShape(
        const std::filesystem::path& file, const SceneFileOptions& options, std::optional<float> radius);
    /// A source of the settings, the same object for the same settings. Throws `SourceError`.
    MCCountedPtr<IShellShader> MakeSource(const SourceKind& kind, std::span<const FieldSetting> settings);

private:
    /// Things by what they are made of.
    template <class Thing> struct Kept {
        std::map<std::string, Thing> now;    ///< asked for in this frame
        std::map<std::string, Thing> before; ///< only in the last one

        void BeginFrame();
        template <class Make> const Thing& Get(const std::string& key, const Make& make);
    };

    std::map<std::filesystem::path, std::shared_ptr<const GivenPicture>> fPictures;
    std::map<std::filesystem::path, std::shared_ptr<const Geometry>> fMeshes;
    Kept<SceneFile> fScenes;
    Kept<ModelShape> fShapes;
    Kept<MCCountedPtr<IShellShader>> fSources;

    SceneFile Open(const std::filesystem::path& file, const SceneFileOptions& options) const;
    const GivenPicture* PictureFor(std::span<const FieldSetting> settings) const;
};

} // namespace fernwick
