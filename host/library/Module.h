#pragma once
#include <filesystem>
#include <string>

// Loading a module by path: all of the host that differs between Windows and the rest.

namespace fernwick {

/// Loads the module, or counts it once more. Null when that fails; `LastModuleFailure` tells why.
void* OpenModule(const std::filesystem::path& path);

#ifndef _WIN32
/// What is wrong with the length of a module or program: to touch a segment that is mapped beyond its end stops the
/// process. Empty for a whole file, and for one that isn't of this system, which the system itself tells best.
std::string DamageOf(const std::filesystem::path& path);
#endif

/// Takes one load back. The last one takes the module out of the process.
void CloseModule(void* handle);

/// The exported function of this name; null when there is none.
void* FindFunction(void* handle, const char* name);

/// Whether the module is in this process.
bool IsModuleLoaded(const std::filesystem::path& path);

/// Why the load that has just failed did, without the name of the file.
std::string LastModuleFailure();

} // namespace fernwick
