#pragma once
#include <atomic>

/// From here on a signal that ends the command leaves no file half written, Ctrl-C is told and answers 130, and a
/// file-size limit is an error like a full disk. To be called first.
void LeaveNoUnfinishedFile();

/// From the first call on Ctrl-C is the job's to answer. The flag turns true with the first one, for the job to stop.
/// Where it doesn't within a second, as while a file is read or in one long sample, and with a second Ctrl-C, the
/// command ends on the spot.
const std::atomic<bool>& WatchForInterrupt();
