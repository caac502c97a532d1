#include "tools/pictures/ModelProgress.h"
#include "host/documents/SceneFile.h"
#include "host/json/Printable.h"
#include "tools/pictures/ProgressBar.h"
#include <memory>

void ShowModelsLoading()
{
    fernwick::ShowSceneFiles([](const std::filesystem::path& file) -> fernwick::SceneFileProgress {
        const auto bar = std::make_shared<ProgressBar>(fernwick::Printable(file.filename().string()));
        return [bar](double share) { bar->Show(share); };
    });
}
