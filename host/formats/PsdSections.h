#pragma once
#include <filesystem>
#include <string>

namespace fernwick {

/// Why a PSD or PSB can't be decoded, as far as the sizes of its sections tell: they lead beyond its end. Empty for a
/// whole one, and for every other file. To be asked before the decoder, which takes the memory that a size asks for.
std::string WhyNoPsd(const std::filesystem::path& file);

} // namespace fernwick
