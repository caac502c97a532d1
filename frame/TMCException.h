#pragma once
#include "frame/Layout.h"
#include <cstddef>
#include <cstdint>

/// Extra data that an exception can carry.
class TMCExceptionData {
public:
    virtual ~TMCExceptionData() = default;
};

/// The one exception type of the pack: a broken invariant or a missing host component.
///
/// Its construction is reported by the code: "A cancel exception is being thrown" for 0x80010080 and
/// 0x800101EA, nothing for 0x80010081 and 0, "An unable to connect exception is being thrown" for 4, and
/// "An exception is being thrown" for every other code. Copies are not reported.
class TMCException {
public:
    /// @param file  source file of the throw, may be null
    /// @param data  owned by the exception from here on
    explicit TMCException(
        uint32_t errorCode, const char* file = nullptr, int32_t line = 0, TMCExceptionData* data = nullptr);

    /// Takes over `fData`; the source's pointer becomes null.
    TMCException(const TMCException& other);
    TMCException& operator=(const TMCException& other);
    ~TMCException();

    uint32_t fErrorCode;
    const char* fFile;
    int32_t fLine;
    mutable TMCExceptionData* fData; ///< mutable because a throw copies from a const source
};
static_assert(offsetof(TMCException, fErrorCode) == 0 && offsetof(TMCException, fFile) == BySize(8, 4));
static_assert(
    offsetof(TMCException, fLine) == BySize(16, 8) && offsetof(TMCException, fData) == BySize(24, 12));
