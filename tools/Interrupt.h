#pragma once
#include <atomic>

/// From here on a signal that ends the command leaves no file half written, and a file-size limit is an error like a
/// full disk. To be called first.
void LeaveNoUnfinishedFile();

/// Watches for Ctrl-C from the first call on. The flag turns true with the first one, for the job to stop. Where it
/// doesn't within a second, as while a file is read or in one long sample, and with a second Ctrl-C, the command ends
/// on the spot.
const std::atomic<bool>& WatchForInterrupt();
