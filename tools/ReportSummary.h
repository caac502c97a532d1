#pragma once
#include "host/library/ReportCounts.h"

/// Counts the debug reports of the library and tells them on stderr when it goes: each distinct one once.
class ReportSummary {
public:
    explicit ReportSummary(fernwick::DebugService& service) : fCounts(service) { }
    ~ReportSummary();
    ReportSummary(const ReportSummary&) = delete;
    ReportSummary& operator=(const ReportSummary&) = delete;

private:
    fernwick::ReportCounts fCounts;
};
