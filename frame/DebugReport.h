#pragma once
#include "frame/HostServices.h"

/// Passes a message to the host's debug service. A report only informs: the caller goes on with its fallback.
/// Without `gDebugUtilities` there is nobody to inform, and the message is dropped.
/// @param file  source file, may be null
inline void DebugReport(const char* file, int32_t line, const char* message)
{
    if (gDebugUtilities != nullptr)
        gDebugUtilities->Report(file, line, message);
}

/// The wide-character report that the service forwarders raise with the name of a missing service.
inline void DebugReportWide(const char* file, int32_t line, const char16_t* message)
{
    if (gDebugUtilities != nullptr)
        gDebugUtilities->ReportWide(file, line, message);
}

/// Reports from the place where it stands.
#define MC_REPORT(message) DebugReport(__FILE__, __LINE__, message)
