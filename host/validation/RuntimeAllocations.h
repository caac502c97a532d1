#pragma once
#include <cstdint>
#include <filesystem>

namespace fernwick::validation {

/// Counts from here on what a loaded module asks of the allocators of the C and C++ runtimes, by directing its
/// imports to functions that count. For one module in the life of a process.
void WatchRuntimeAllocations(const std::filesystem::path& module);

int64_t RuntimeAllocations();

} // namespace fernwick::validation
