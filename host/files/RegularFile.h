#pragma once
#include <filesystem>
#include <string>

namespace fernwick {

/// Why there is no file to read at a path, such as "there is no such file" or "it is a folder"; empty for a regular
/// file. Pipes and devices may never end, or never begin.
std::string WhyNoFile(const std::filesystem::path& path);

} // namespace fernwick
