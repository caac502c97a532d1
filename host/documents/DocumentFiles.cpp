#include "host/documents/DocumentFiles.h"

namespace fernwick {

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
    fSources.BeginFrame();
}

SceneFile DocumentFiles::ReadScene(const std::filesystem::path& file)
{
    return fScenes.Get(file.string(), [&file] { return ReadSceneFile(file); });
}

MCCountedPtr<IShellShader> DocumentFiles::MakeSource(
    const SourceKind& kind, std::span<const FieldSetting> settings)
{
    std::string key = kind.fTable.fName;
    for (const FieldSetting& setting : settings)
        key += '\n' + setting.fField->fName + ' ' + ValueText(*setting.fField, setting.fValue);
    return fSources.Get(key, [&] { return kind.fMake(settings); });
}

} // namespace fernwick
