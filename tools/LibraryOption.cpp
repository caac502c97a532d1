#include "tools/LibraryOption.h"
#include "host/library/Library.h"
#include <cstdlib>

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

#ifdef _WIN32
constexpr const char* kLibraryName = "Fernwick_shaders.dll";

std::filesystem::path FolderOfCommand()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}
#else
constexpr const char* kLibraryName = "Fernwick_shaders.so";

std::filesystem::path FolderOfCommand()
{
    std::error_code unknown; // where /proc isn't mounted
    return std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path();
}
#endif

constexpr const char* kVariable = "FERNWICK_LIBRARY";

/// The file that the environment names; empty when it names none. Throws `LibraryError` when the file isn't there.
std::filesystem::path LibraryOfEnvironment()
{
    const char* const named = std::getenv(kVariable);
    if (named == nullptr || *named == 0)
        return {};
    try {
        fernwick::RequireLibraryFile(named);
    } catch (const fernwick::LibraryError& error) {
        throw fernwick::LibraryError(std::string(kVariable) + ": " + error.what());
    }
    return named;
}

} // namespace

void AddLibraryOption(CLI::App& command, std::string& named)
{
    command
        .add_option("--library", named, "The library to load (else FERNWICK_LIBRARY, else near the command)")
        ->type_name("PATH");
}

void RequireNamedLibrary(const std::string& named)
{
    if (named.empty())
        LibraryOfEnvironment();
    else
        fernwick::RequireLibraryFile(named);
}

std::filesystem::path FindLibrary(const std::string& named)
{
    if (!named.empty())
        return named;
    if (const std::filesystem::path fromEnvironment = LibraryOfEnvironment(); !fromEnvironment.empty())
        return fromEnvironment;
    std::string looked;
    const std::filesystem::path folder = FolderOfCommand();
    if (folder.empty())
        throw fernwick::LibraryError(
            "without /proc the command doesn't know where it lies, and so not where the "
            "library is; name it with --library or FERNWICK_LIBRARY");
    for (const char* const place : {".", "..", "../lib/fernwick"}) {
        const std::filesystem::path candidate = (folder / place / kLibraryName).lexically_normal();
        if (std::filesystem::exists(candidate))
            return candidate;
        looked += "\n  " + candidate.string();
    }
    throw fernwick::LibraryError(
        "the library isn't found; name it with --library or FERNWICK_LIBRARY. Looked for:" + looked);
}
