#include "tools/ReportSummary.h"
#include "tools/Streams.h"
#include <fmt/format.h>

ReportSummary::ReportSummary(fernwick::DebugService& service) : fService(service)
{
    fService.fListener = [this](const fernwick::Report& report) {
        const std::string place
            = report.file.empty() ? "" : fmt::format(" ({}:{})", report.file, report.line);
        const std::lock_guard lock(fMutex);
        ++fCounts[report.message + place];
    };
}

ReportSummary::~ReportSummary()
{
    fService.fListener = nullptr;
    for (const auto& [text, count] : fCounts)
        Tell(fmt::format("fernwick: report of the library: {}{}\n", text,
            count == 1 ? "" : fmt::format(", {} times", count)));
}
