#include "host/documents/SceneFile.h"

// A page reads no files: models are given.

namespace fernwick {

SceneFile ReadSceneFile(const std::filesystem::path& file, const SceneFileOptions&)
{
    throw SceneFileError("there is no model \"" + file.string() + "\"; drop it onto the page");
}

} // namespace fernwick
