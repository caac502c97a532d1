#include "host/library/ReportCounts.h"
#include <fmt/format.h>

namespace fernwick {

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

std::string TextOf(const Report& report)
{
    std::string text = report.message;
    text += MeaningOf(report.message);
    if (!report.file.empty())
        text += fmt::format(" ({}:{})", report.file, report.line);
    if (!report.shader.empty())
        text += " by " + report.shader;
    return text;
}

} // namespace

ReportCounts::ReportCounts(DebugService& service) : fService(service)
{
    fService.fListener = [this](const Report& report) {
        {
            const std::lock_guard lock(fMutex);
            ++fCounts[TextOf(report)];
        }
        fService.Clear();
    };
}

ReportCounts::~ReportCounts() { fService.fListener = nullptr; }

std::vector<std::string> ReportCounts::Take()
{
    std::map<std::string, size_t> counts;
    {
        const std::lock_guard lock(fMutex);
        counts.swap(fCounts);
    }
    std::vector<std::string> texts;
    for (const auto& [text, count] : counts)
        texts.push_back(text + (count == 1 ? "" : fmt::format(", {} times", count)));
    return texts;
}

} // namespace fernwick
