#include "frame/DebugReport.h"
#include "frame/Errors.h"
#include "frame/TMCException.h"
#include "module/ExceptionTranslators.h"
#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <typeinfo> // which <eh.h> needs and doesn't include

#include <eh.h>
#include <windows.h>

#ifdef __MINGW32__
/// This runtime exports the function only under the name that the platform's own compiler gives it, which can't
/// be declared here; so it is looked up. Null, with nothing installed, where the runtime lacks it.
static _se_translator_function SetTranslator(_se_translator_function translator)
{
    using Setter = _se_translator_function(__cdecl*)(_se_translator_function);
    constexpr char kName[] = "?_set_se_translator@@YAP6AXIPEAU_EXCEPTION_POINTERS@@@ZP6AXI0@Z@Z";
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), kName);
    return address != nullptr ? reinterpret_cast<Setter>(reinterpret_cast<void*>(address))(translator)
                              : nullptr;
}

/// What this compiler calls in the place of a pure operation. Its own knows no handler, and the handler in force can
/// be told only by setting another.
extern "C" void __cxa_pure_virtual()
{
    const _purecall_handler handler = _set_purecall_handler(nullptr);
    _set_purecall_handler(handler);
    if (handler != nullptr)
        handler();
    std::abort();
}
#else
static _se_translator_function SetTranslator(_se_translator_function translator)
{
    return _set_se_translator(translator);
}
#endif

namespace {

constexpr unsigned int kBreakpoint = 0x80000003;
constexpr UINT kErrorMode = 0x8001; // SEM_FAILCRITICALERRORS and SEM_NOOPENFILEERRORBOX

_se_translator_function gSavedTranslator = nullptr;

void TranslateStructuredException(unsigned int code, struct _EXCEPTION_POINTERS*)
{
    if (code != kBreakpoint)
        throw TMCException(kMCSystemFault);
}

void HandlePureCall() { throw TMCException(kMCSystemFault); }

void HandleInvalidParameter(
    const wchar_t* expression, const wchar_t* function, const wchar_t* file, unsigned int line, uintptr_t)
{
    const auto orEmpty = [](const wchar_t* text) { return text != nullptr ? text : L""; };
    wchar_t text[1024] = {};
    std::swprintf(text, std::size(text),
        L"Invalid parameter detected in function %ls.\r\nFile: %ls Line: %i\r\nExpression: %ls",
        orEmpty(function), orEmpty(file), static_cast<int>(line), orEmpty(expression));
    text[std::size(text) - 1] = 0;     // a long one is cut
    char message[3 * std::size(text)]; // UTF-8 of any such text
    WideCharToMultiByte(CP_UTF8, 0, text, -1, message, sizeof message, nullptr, nullptr);
    MC_REPORT(message);
}

} // namespace

void InstallExceptionTranslators()
{
    gSavedTranslator = SetTranslator(TranslateStructuredException);
    SetErrorMode(kErrorMode);
    _set_purecall_handler(HandlePureCall);
    _set_invalid_parameter_handler(HandleInvalidParameter);
}

void RestoreExceptionTranslator() { SetTranslator(gSavedTranslator); }
