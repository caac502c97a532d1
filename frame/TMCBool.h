#pragma once
#include <cstdint>

/// A bool of a parameter record: one byte, in which anything but 0 is true. The host writes records byte by byte,
/// and no byte that it can write is undefined.
class TMCBool {
public:
    constexpr TMCBool(bool value = false) : fByte(value) {}
    constexpr operator bool() const { return fByte != 0; }

private:
    uint8_t fByte;
};
static_assert(sizeof(TMCBool) == 1);
