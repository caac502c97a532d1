#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace fernwick::validation {

/// The writable static data of a loaded module. While watched, they are read-only memory. One at a time in a process.
class StaticData {
public:
    explicit StaticData(const std::filesystem::path& module);

    /// Runs `action` and tells the first address in the module to which it wrote; none when it wrote to none.
    std::optional<uintptr_t> WrittenBy(const std::function<void()>& action) const;
};

} // namespace fernwick::validation
