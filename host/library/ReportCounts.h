#pragma once
#include "host/library/Services.h"
#include <map>

namespace fernwick {

/// Counts the reports of a library while it lives, the same ones together. One report a sample would fill the memory,
/// so the service keeps none beside the counts.
class ReportCounts {
public:
    explicit ReportCounts(DebugService& service);
    ~ReportCounts();
    ReportCounts(const ReportCounts&) = delete;
    ReportCounts& operator=(const ReportCounts&) = delete;

    /// What came since the last call, in sentences such as `temp_tree: the scene has no element of that name by
    /// mask (Location), 3 times`. From any thread.
    std::vector<std::string> Take();

private:
    DebugService& fService;
    std::mutex fMutex;
    std::map<std::string, size_t> fCounts;
};

} // namespace fernwick
