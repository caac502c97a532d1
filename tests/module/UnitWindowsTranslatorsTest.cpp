#include "frame/TMCException.h"
#include "module/ExceptionTranslators.h"
#include "tests/support/StaticServices.h"
#include <cstdlib>
#include <typeinfo> // which <eh.h> needs and doesn't include

#include <eh.h>
#include <windows.h>

/// An object that is asked for what only a class derived from it would supply. Visible, or the compiler would know that
/// there is one such class, and call its operation.
struct Unfinished {
    Unfinished() { Ask(*this); }
    virtual void Supplied() = 0;

    [[gnu::noinline]] static void Ask(Unfinished& object) { object.Supplied(); }
};

struct Finished final : Unfinished {
    void Supplied() override { }
};

namespace {

/// Puts another translator in force. @return the one before
_se_translator_function Exchange(_se_translator_function translator)
{
    using Setter = _se_translator_function (*)(_se_translator_function);
    const FARPROC setter = GetProcAddress(
        GetModuleHandleW(L"msvcrt.dll"), "?_set_se_translator@@YAP6AXIPEAU_EXCEPTION_POINTERS@@@ZP6AXI0@Z@Z");
    return reinterpret_cast<Setter>(reinterpret_cast<void*>(setter))(translator);
}

_se_translator_function InForce()
{
    const _se_translator_function translator = Exchange(nullptr);
    Exchange(translator);
    return translator;
}

void OfTheHost(unsigned int, struct _EXCEPTION_POINTERS*) { }

/// Leaves the process as it was.
class UnitWindowsTranslatorsTest : public UnitTest {
protected:
    UnitWindowsTranslatorsTest() { SetErrorMode(0); }
    ~UnitWindowsTranslatorsTest() override
    {
        Exchange(fTranslator);
        SetErrorMode(fErrorMode);
        _set_purecall_handler(fPureCall);
        _set_invalid_parameter_handler(fInvalidParameter);
    }

private:
    _se_translator_function fTranslator = Exchange(&OfTheHost);
    UINT fErrorMode = GetErrorMode();
    _purecall_handler fPureCall = _set_purecall_handler(nullptr);
    _invalid_parameter_handler fInvalidParameter = _get_invalid_parameter_handler();
};

/// The code of what `act` throws, 0 when it throws nothing.
template <class Act> uint32_t ThrownBy(Act act)
{
    try {
        act();
    } catch (const TMCException& exception) {
        EXPECT_EQ(exception.fFile, nullptr);
        return exception.fErrorCode;
    }
    return 0;
}

TEST_F(UnitWindowsTranslatorsTest, TheModuleTranslatesFaultsUntilItGivesTheHostsTranslatorBack)
{
    fernwick::Library library(FERNWICK_MODULE);
    const _se_translator_function translator = InForce();
    ASSERT_NE(translator, &OfTheHost);
    EXPECT_EQ(ThrownBy([&] { translator(EXCEPTION_ACCESS_VIOLATION, nullptr); }), kMCSystemFault);
    EXPECT_EQ(ThrownBy([&] { translator(EXCEPTION_BREAKPOINT, nullptr); }), 0u);
    EXPECT_EQ(GetErrorMode(), 0x8001u);

    library.fCleanUpExceptionTranslator();
    EXPECT_EQ(InForce(), &OfTheHost);
    EXPECT_EQ(GetErrorMode(), 0x8001u); // stays

    library.fInitExceptionTranslator();
    EXPECT_EQ(InForce(), translator);
    library.fInitExceptionTranslator(); // now its own is the one before
    library.fCleanUp();
    EXPECT_EQ(InForce(), translator);
}

TEST_F(UnitWindowsTranslatorsTest, APureCallThrowsAndABadParameterIsReported)
{
    InstallExceptionTranslators();
    RestoreExceptionTranslator(); // the other handlers stay
    EXPECT_EQ(ThrownBy([] { Finished(); }), kMCSystemFault);
    TakeReports();

    const _invalid_parameter_handler handler = _get_invalid_parameter_handler();
    handler(L"size > 0", L"Copy", L"copy.c", 7, 0);
    handler(nullptr, nullptr, nullptr, 0, 0);
    handler(L"\u20ac", L"f", L"\u00e9.c", 1, 0);
    handler(std::wstring(2000, L'x').c_str(), L"f", L"f.c", 1, 0);
    const std::vector<std::string> reports = TakeReports();
    ASSERT_EQ(reports.size(), 4u);
    EXPECT_EQ(reports[0],
        "Invalid parameter detected in function Copy.\r\nFile: copy.c Line: 7\r\nExpression: size > 0");
    EXPECT_EQ(reports[1], "Invalid parameter detected in function .\r\nFile:  Line: 0\r\nExpression: ");
    EXPECT_THAT(reports[2], testing::EndsWith("File: \xC3\xA9.c Line: 1\r\nExpression: \xE2\x82\xAC"));
    EXPECT_EQ(reports[3].size(), 1023u);
}

} // namespace
