#include "frame/DebugReport.h"
#include "frame/HostServices.h"

void DebugReport(const char* file, int32_t line, const char* message)
{
    if (gDebugUtilities != nullptr)
        gDebugUtilities->Report(file, line, message);
}

void DebugReportWide(const char* file, int32_t line, const char16_t* message)
{
    if (gDebugUtilities != nullptr)
        gDebugUtilities->ReportWide(file, line, message);
}
