#pragma once
#include "frame/IMCUnknown.h"

inline constexpr GUID IID_IExClassFactory
    = {0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// Makes objects of one class.
class IExClassFactory : public IMCUnknown {
public:
    /// Makes an object and stores its face `id` into `*out`.
    /// @param outer  the aggregating object, not counted; null for none
    /// @return 0; `kMCNoSuchClass` when the pack doesn't make the class or memory is refused; otherwise the
    ///         failure of the query, after which no object is left
    virtual MCErr CreateInstance(IMCUnknown* outer, const GUID& id, void** out) = 0;
    /// Does nothing and returns 0.
    virtual MCErr LockServer(bool lock) = 0;

protected:
    ~IExClassFactory() = default;
};
