#pragma once
#include <cstdint>
#include <cstring>

#ifdef _WIN32
#include <guiddef.h>
#else
/// A 16-byte identifier of a class or an interface, in the standard record.
struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
#endif
static_assert(sizeof(GUID) == 16);

/// True when two identifiers are equal, compared as four 32-bit words.
inline bool SameGuid(const GUID& left, const GUID& right)
{
    uint32_t leftWords[4];
    uint32_t rightWords[4];
    std::memcpy(leftWords, &left, sizeof left);
    std::memcpy(rightWords, &right, sizeof right);
    return leftWords[0] == rightWords[0] && leftWords[1] == rightWords[1] && leftWords[2] == rightWords[2]
        && leftWords[3] == rightWords[3];
}
