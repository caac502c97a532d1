#include "frame/TMCException.h"
#include "frame/DebugReport.h"
#include <utility>

namespace {

/// The text that announces an exception of this code, null for a silent one.
const char* ReportOf(uint32_t errorCode)
{
    switch (errorCode) {
    case 0x80010080:
    case 0x800101EA:
        return "A cancel exception is being thrown";
    case 0x80010081:
    case 0:
        return nullptr;
    case 4:
        return "An unable to connect exception is being thrown";
    default:
        return "An exception is being thrown";
    }
}

} // namespace

TMCException::TMCException(uint32_t errorCode, const char* file, int32_t line, TMCExceptionData* data)
    : fErrorCode(errorCode), fFile(file), fLine(line), fData(data)
{
    if (const char* const report = ReportOf(errorCode))
        DebugReport(file, line, report);
}

TMCException::TMCException(const TMCException& other)
    : fErrorCode(other.fErrorCode), fFile(other.fFile), fLine(other.fLine),
      fData(std::exchange(other.fData, nullptr))
{ }

TMCException& TMCException::operator=(const TMCException& other)
{
    if (this != &other) {
        fErrorCode = other.fErrorCode;
        fFile = other.fFile;
        fLine = other.fLine;
        delete fData;
        fData = std::exchange(other.fData, nullptr);
    }
    return *this;
}

TMCException::~TMCException() { delete fData; }
