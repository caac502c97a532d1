#pragma once
#include <atomic>

/// Watches for Ctrl-C from the first call on. The flag turns true with the first one; a second one ends the
/// command at once.
const std::atomic<bool>& WatchForInterrupt();
