#pragma once
#include <filesystem>
#include <string>

namespace CLI {
class App;
} // namespace CLI

/// Adds `--library`, which is stored into `named`.
void AddLibraryOption(CLI::App& command, std::string& named);

/// For commands that could do without the library: throws `fernwick::LibraryError` when `named`, or else what
/// `FERNWICK_LIBRARY` names, is no file. Whoever names a library means it to be there.
void RequireNamedLibrary(const std::string& named = "");

/// The library's file: `named` if given, else what `FERNWICK_LIBRARY` names, else the first that exists of: beside
/// the command, in the folder above (the build tree), and in `../lib/fernwick`. Throws `fernwick::LibraryError`,
/// which tells where it looked, and whether it was the variable that named what isn't there.
std::filesystem::path FindLibrary(const std::string& named);
