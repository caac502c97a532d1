#pragma once
#include "frame/IMCUnknown.h"

inline constexpr GUID IID_IShellDataComponent
    = {0x495D3AAD, 0x1B92, 0x11D2, {0x8F, 0x38, 0x00, 0x60, 0x97, 0x98, 0xE7, 0x7D}};

/// The host's component that aggregates an extension. Reached by `QueryInterface` of an aggregated shader.
class IShellDataComponent : public IMCUnknown {
public:
    /// True when the two components hold equal data.
    virtual bool IsEqualToComponent(IShellDataComponent* other) = 0;
    /// Takes the argument of the shader's `ForwardToDataComponent`.
    virtual void ForwardToComponent(void* a) = 0;

protected:
    ~IShellDataComponent() = default;
};
