#pragma once
#include <filesystem>
#include <string>

namespace fernwick {

/// Why a PNG can't be decoded, as far as its chunks tell: it is cut off, or one that decoding needs is damaged. Empty
/// for a whole one. To be asked before libpng, which prints of its own when it fails.
std::string WhyNoPng(const std::filesystem::path& file);

} // namespace fernwick
