#pragma once
#include <cstdint>

/// A switch of a record: one byte, 0 for false and any other for true. Hosts write records byte by
/// byte, and a `bool` that holds another byte than 0 and 1 must not be read.
class TMCBool {
public:
    constexpr TMCBool(bool value = false) : fByte(value ? 1 : 0) { }
    constexpr operator bool() const { return fByte != 0; }

private:
    uint8_t fByte;
};
static_assert(sizeof(TMCBool) == 1);
