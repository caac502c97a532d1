#pragma once
#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>

/// Adds `--library`, which is stored into `named`.
void AddLibraryOption(CLI::App& command, std::string& named);

/// The library's file: `named` if given, else what `FERNWICK_LIBRARY` names, else the first that exists of: beside
/// the command, in the folder above (the build tree), and in `../lib/fernwick`. Throws `fernwick::LibraryError`,
/// which tells where it looked.
std::filesystem::path FindLibrary(const std::string& named);
