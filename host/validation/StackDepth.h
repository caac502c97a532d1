#pragma once
#include <cstddef>
#include <functional>

namespace fernwick::validation {

constexpr size_t kWatchedStack = 64 * 1024; ///< bytes; what goes deeper counts as this

/// How many bytes of stack below the caller's `action` takes; to be called on a thread with room for more than
/// `kWatchedStack`.
size_t StackDepthOf(const std::function<void()>& action);

} // namespace fernwick::validation
