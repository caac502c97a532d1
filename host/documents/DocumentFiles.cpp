#include "host/documents/DocumentFiles.h"
#include "host/documents/ModelShape.h"
#include <fmt/format.h>

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
template <class Make>
const Thing& DocumentFiles::Kept<Thing>::Get(const std::string& key, const Make& make)
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

SceneFile DocumentFiles::ReadScene(const std::filesystem::path& file, const SceneFileOptions& options)
{
    return fScenes.Get(KeyOf(file, options), [&] { return ReadSceneFile(file, options); });
}

ModelShape DocumentFiles::ReadShape(
    const std::filesystem::path& file, const SceneFileOptions& options, std::optional<float> radius)
{
    const std::string key = KeyOf(file, options) + (radius ? fmt::format("\n{}", *radius) : "");
    return fShapes.Get(key, [&] {
        const SceneFile model = ReadSceneFile(file, options);
        ModelShape shape = {MergeMeshes(model.fElements, radius), model.fNotices};
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
    return fSources.Get(key, [&] { return fernwick::MakeSource(kind, settings); });
}

} // namespace fernwick
