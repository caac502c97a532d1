#pragma once
#include <filesystem>
#include <string>

// Loading a module by path: all of the host that differs between Windows and the rest.

namespace fernwick {

/// Loads the module, or counts it once more. Null when that fails; `LastModuleFailure` tells why.
void* OpenModule(const std::filesystem::path& path);

/// Takes one load back. The last one takes the module out of the process.
void CloseModule(void* handle);

/// The exported function of this name; null when there is none.
void* FindFunction(void* handle, const char* name);

/// Whether the module is in this process.
bool IsModuleLoaded(const std::filesystem::path& path);

/// Why the load that has just failed did, without the name of the file.
std::string LastModuleFailure();

} // namespace fernwick
