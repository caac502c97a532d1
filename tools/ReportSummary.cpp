#include "tools/ReportSummary.h"
#include "tools/Tell.h"
#include <fmt/core.h>

ReportSummary::ReportSummary(fernwick::DebugService& service) : fService(service)
{
    fService.fListener = [this](const fernwick::Report& report) {
        std::string text = report.message;
        if (!report.file.empty())
            text += fmt::format(" ({}:{})", report.file, report.line);
        if (!report.shader.empty())
            text += " by " + report.shader;
        const std::lock_guard lock(fMutex);
        ++fCounts[text];
    };
}

ReportSummary::~ReportSummary()
{
    fService.fListener = nullptr;
    for (const auto& [text, count] : fCounts)
        Tell(fmt::format(
            "report of the library: {}{}", text, count == 1 ? "" : fmt::format(", {} times", count)));
}
