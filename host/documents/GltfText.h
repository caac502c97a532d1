#pragma once
#include <filesystem>
#include <span>

namespace fernwick {

/// Whether a file is glTF by its ending, as text or binary.
bool IsGltf(const std::filesystem::path& file);

/// Makes strips of the loops of lines in the text of a glTF file, or in a piece of it. Assimp's reader crashes at a
/// loop of which no line is left since its vertices aren't there; it bears strips, and scenes leave lines out anyway.
void OpenLineLoops(std::span<char> text);

} // namespace fernwick
