#include "host/documents/DocumentFiles.h"
#include "host/documents/ModelShape.h"
#include "host/geometry/Mesh.h"
#include <fmt/format.h>
#include <set>

namespace fernwick {

namespace {

/// All that a file is read by.
std::string KeyOf(const std::filesystem::path& file, const SceneFileOptions& options)
{
    std::string key = fmt::format("{}\n{} {}", file.string(), options.fZUp, options.fScale);
    for (const auto& row : options.fPlace.fMatrix)
        key += fmt::format(" {} {} {}", row[0], row[1], row[2]);
    for (uint32_t axis = 0; axis < 3; ++axis)
        key += fmt::format(" {}", options.fPlace.fTranslation[axis]);
    for (const auto& [material, shader] : options.fShaders)
        key += '\n' + material + '\n' + shader;
    return key;
}

} // namespace

template <class Thing> void DocumentFiles::Kept<Thing>::BeginFrame() { before = std::exchange(now, {}); }

template <class Thing>
template <class MakeThing>
const Thing& DocumentFiles::Kept<Thing>::Get(const std::string& key, const MakeThing& make)
{
    if (const auto found = now.find(key); found != now.end())
        return found->second;
    if (auto kept = before.extract(key))
        return now.insert(std::move(kept)).position->second;
    return now.emplace(key, make()).first->second;
}

void DocumentFiles::BeginFrame()
{
    fScenes.BeginFrame();
    fShapes.BeginFrame();
    fSources.BeginFrame();
}

void DocumentFiles::Give(const std::filesystem::path& file, std::shared_ptr<const GivenPicture> picture)
{
    fPictures[file.lexically_normal()] = std::move(picture);
}

void DocumentFiles::Give(const std::filesystem::path& file, std::shared_ptr<const Geometry> mesh)
{
    fMeshes[file.lexically_normal()] = std::move(mesh);
}

void DocumentFiles::Forget(const std::filesystem::path& file)
{
    fPictures.erase(file.lexically_normal());
    fMeshes.erase(file.lexically_normal());
}

SceneFile DocumentFiles::Open(const std::filesystem::path& file, const SceneFileOptions& options) const
{
    const auto found = fMeshes.find(file.lexically_normal());
    if (found == fMeshes.end())
        return ReadSceneFile(file, options);
    if (options.fZUp || options.fScale != 1)
        throw SceneFileError(
            "a mesh that is given has its own axes and lengths; leave \"up\" and \"scale\" out");
    SceneFile scene;
    scene.fElements.push_back({.fName = "Mesh",
        .fPlace = options.fPlace,
        .fGeometry = found->second,
        .fUVSets = found->second->Mesh()->UVSetCount()});
    return scene;
}

DocumentFiles::Source DocumentFiles::Make(
    const SourceKind& kind, std::span<const FieldSetting> settings) const
{
    std::filesystem::path file;
    for (const FieldSetting& setting : settings)
        if (const auto* const named = std::get_if<std::filesystem::path>(&setting.fValue))
            file = *named;
    if (const auto found = fPictures.find(file.lexically_normal()); found != fPictures.end())
        return {MakePictureSource(*found->second, settings), {}};
    Source source = {fernwick::MakeSource(kind, settings), {}};
    if (!file.empty())
        source.fFiles.push_back(file);
    return source;
}

std::vector<std::filesystem::path> DocumentFiles::Asked() const
{
    std::set<std::filesystem::path> files;
    const auto add = [&files](const auto& kept) {
        for (const auto& [key, thing] : kept.now)
            files.insert(thing.fFiles.begin(), thing.fFiles.end());
    };
    add(fScenes);
    add(fShapes);
    add(fSources);
    return {files.begin(), files.end()};
}

SceneFile DocumentFiles::ReadScene(const std::filesystem::path& file, const SceneFileOptions& options)
{
    return fScenes.Get(KeyOf(file, options), [&] { return Open(file, options); });
}

ModelShape DocumentFiles::ReadShape(
    const std::filesystem::path& file, const SceneFileOptions& options, std::optional<float> radius)
{
    const std::string key = KeyOf(file, options) + (radius ? fmt::format("\n{}", *radius) : "");
    return fShapes.Get(key, [&] {
        const SceneFile model = Open(file, options);
        ModelShape shape = {MergeMeshes(model.fElements, radius), model.fNotices, model.fFiles};
        if (shape.fGeometry == nullptr)
            throw SceneFileError(file.string() + " can't be taken for a shape: it has no mesh");
        return shape;
    });
}

MCCountedPtr<IShellShader> DocumentFiles::MakeSource(
    const SourceKind& kind, std::span<const FieldSetting> settings)
{
    std::string key = kind.fTable.fName;
    for (const FieldSetting& setting : settings)
        key += '\n' + setting.fField->fName + ' ' + ValueText(*setting.fField, setting.fValue);
    return fSources.Get(key, [&] { return Make(kind, settings); }).fShader;
}

} // namespace fernwick
