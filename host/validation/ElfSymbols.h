#pragma once
#include <filesystem>
#include <string>
#include <vector>

namespace fernwick::validation {

/// The names that a 64-bit ELF file defines for others. Throws `std::runtime_error` for any other file.
std::vector<std::string> ExportedNames(const std::filesystem::path& path);

} // namespace fernwick::validation
