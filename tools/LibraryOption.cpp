#include "tools/LibraryOption.h"
#include "host/library/Library.h"
#include "tools/CommandFile.h"
#include <CLI/CLI.hpp>
#include <cstdlib>

namespace {

constexpr const char* kLibraryName = "Fernwick_shaders.so";
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
    const std::filesystem::path folder = CommandFile().parent_path();
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
