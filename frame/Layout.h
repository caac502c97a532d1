#pragma once
#include <cstddef>

/// A size or an offset of a record that holds pointers: the first where these have 8 bytes, the second where they have 4.
constexpr size_t BySize(size_t wide, size_t narrow) { return sizeof(void*) == 8 ? wide : narrow; }

/// A static_assert on a record's size and offsets that gives no warning under a host's own flags. A record with a name
/// in it is no standard-layout type, and gcc warns of each offsetof in one, though it places the members of a class
/// without virtual bases like any other's.
#define PIN_LAYOUT(...)                                                                                      \
    _Pragma("GCC diagnostic push")                                                                           \
        _Pragma("GCC diagnostic ignored \"-Winvalid-offsetof\"") static_assert(__VA_ARGS__);                 \
    _Pragma("GCC diagnostic pop") static_assert(true)
