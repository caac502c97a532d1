#include "tools/ReportSummary.h"
#include "tools/Tell.h"

ReportSummary::~ReportSummary()
{
    for (const std::string& text : fCounts.Take())
        Tell("report of the library: " + text);
}
