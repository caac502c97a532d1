#include "tools/ReportSummary.h"
#include "tools/Tell.h"
#include <fmt/core.h>
#include <string_view>

namespace {

/// What the library's short names of missing things mean to whoever made the graph; empty for other reports.
std::string_view MeaningOf(std::string_view message)
{
    if (message == "scene")
        return ": the graph has no scene";
    if (message == "objecttree" || message == "temp_tree")
        return ": the scene has no element of that name";
    return "";
}

} // namespace

ReportSummary::ReportSummary(fernwick::DebugService& service) : fService(service)
{
    fService.fListener = [this](const fernwick::Report& report) {
        std::string text = report.message;
        text += MeaningOf(report.message);
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
