#pragma once
#include "frame/Layout.h"
#include "frame/ShaderBase.h"

/// What each shader class does in its own name: destruction, its record's address and the comparison of
/// records. `Class` provides `bool SameParams(const Params& other) const`.
///
/// An object is its three interface faces, then its parameter record, then its other members.
template <class Class, class Params, class Base> class UnsizedShaderOf : public Base {
public:
    uint32_t Release() override { return TBasicUnknown::ReleaseComponent(static_cast<Class*>(this)); }

    /// @param other  taken as an object of the same class; null is never the same
    int32_t SameParameters(I3DExShader* other) final
    {
        return other != nullptr
            && static_cast<const Class*>(this)->SameParams(static_cast<Class*>(other)->fParams);
    }

    void* GetExtensionDataBuffer() override { return &fParams; }

protected:
    ~UnsizedShaderOf() = default;

    Params fParams;
};

/// A shader class that tells the size of its record, as all with a route do.
template <class Class, class Params, class Base = ShaderBase>
class ShaderOf : public UnsizedShaderOf<Class, Params, Base> {
public:
    uint32_t GetParamsBufferSize() override { return sizeof(Params); }

protected:
    ~ShaderOf() = default;
};
