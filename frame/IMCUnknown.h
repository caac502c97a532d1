#pragma once
#include "frame/Errors.h"
#include "frame/Guid.h"

inline constexpr GUID IID_IMCUnknown
    = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// The root interface. Every object of the pack and of the host is reached, and counted, through these three
/// operations, which stand first in every interface.
class IMCUnknown {
public:
    /// Stores the face named by `id` into `*out`, counted for the caller, and returns 0. With an unknown
    /// identifier stores null and returns `kMCNoInterface`.
    virtual MCErr QueryInterface(const GUID& id, void** out) = 0;

    /// Adds a reference and returns the new count.
    virtual uint32_t AddRef() = 0;

    /// Drops a reference, destroys the object with the last one, and returns the new count.
    virtual uint32_t Release() = 0;

protected:
    ~IMCUnknown() = default;
};
