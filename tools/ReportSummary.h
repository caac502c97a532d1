#pragma once
#include "host/library/Services.h"
#include <map>
#include <mutex>
#include <string>

/// Counts the debug reports of the library and tells them on stderr when it goes: each distinct one once.
class ReportSummary {
public:
    explicit ReportSummary(fernwick::DebugService& service);
    ~ReportSummary();
    ReportSummary(const ReportSummary&) = delete;
    ReportSummary& operator=(const ReportSummary&) = delete;

    /// Drops what the service keeps beside the counts; a report a sample would fill the memory.
    void Forget() { fService.Clear(); }

private:
    fernwick::DebugService& fService;
    std::mutex fMutex;
    std::map<std::string, size_t> fCounts;
};
