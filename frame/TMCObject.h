#pragma once
#include <cstddef>

/// Base of everything that lives in the host's object memory. It has no data.
class TMCObject {
public:
    /// Memory from `gMemoryUtilities`; null when the service is missing or refuses, so that a new-expression
    /// gives null and runs no constructor.
    static void* operator new(size_t size) noexcept;
    static void operator delete(void* memory) noexcept;
};
