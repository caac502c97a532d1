#pragma once
#include "frame/Colors.h"
#include "frame/IMCUnknown.h"
#include "frame/ShadingFlags.h"
#include "frame/ShadingIn.h"
#include "frame/ShadingOut.h"

inline constexpr GUID IID_I3DExShader
    = {0x06DD2161, 0x2ED7, 0x101C, {0x88, 0x5F, 0x04, 0x02, 0x1C, 0x00, 0x70, 0x02}};

/// The coverage that a shading operation returns for a sample that the shader fully answered.
constexpr float kFullCoverage = 1.0f;

/// A shader as the host drives it. The order of the operations is the binary interface.
///
/// Shading operations report no failures: what is missing gives a default result, told per shader. They
/// allocate nothing and take no lock, and one object serves one thread at a time. Before the first
/// `ExtensionDataChanged` of the object a shader isn't ready to shade.
class I3DExShader : public IMCUnknown {
public:
    /// Nonzero when `other`, an object of the same class, would shade alike; 0 for null.
    virtual int32_t SameParameters(I3DExShader* other) = 0;
    /// Adds what the shader reads to `flags.fNeeds`, sets `fDependencyBits` to 0, and returns 0.
    virtual MCErr ReportNeeds(ShadingFlags& flags) = 0;
    virtual bool QueryBooleanTrait() = 0;
    /// The `OutputKinds` that the shader offers.
    virtual int32_t GetOutputKinds() = 0;
    virtual bool ReservedFalseA(void* a) = 0;
    virtual MCErr ReservedNotImplementedA(void* a, void* b, void* c) = 0;
    /// @return 1 when `result` holds a surface, 0 when nothing was produced
    virtual int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) = 0;
    /// @return coverage
    virtual float ShadeValue(float& value, bool& fullArea, ShadingIn& in) = 0;
    /// @return coverage
    virtual float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) = 0;
    virtual void ObsoleteCallA(void* a, void* b) = 0;
    virtual void ObsoleteCallB(void* a, void* b) = 0;
    virtual void ReservedNoOpA(void* a, void* b) = 0;
    virtual void ReservedNoOpB(void* a, void* b) = 0;
    /// @param vector  the bent surface normal in world coordinates
    /// @return coverage
    virtual float ShadeVector(TVector3& vector, ShadingIn& in) = 0;
    virtual MCErr ReservedNotImplementedB(void* a, void* b) = 0;
    virtual void ReservedNoOpC(void* a) = 0;
    virtual bool ReservedTrueA() = 0;
    virtual bool ReservedFalseB(void* a, void* b) = 0;
    /// Stores null into `*out` and returns 1.
    virtual int32_t ClearOutPointer(void* a, void* b, void** out) = 0;
    /// Stores `object`, counted, into `*out`; returns true.
    virtual bool StoreCountedOut(IMCUnknown** out, IMCUnknown* object, void* c) = 0;
    /// Hands `a` to the host's data component. Throws `kMCNoComponent` when there is none.
    virtual void ForwardToDataComponent(void* a) = 0;
    virtual bool ReservedFalseC(uint32_t a) = 0;
    virtual int32_t ReservedMinusOne(uint32_t a) = 0;
    virtual int32_t ReservedZeroA() = 0;
    virtual int32_t ReservedZeroB(uint32_t a) = 0;
    virtual MCErr ReservedNotImplementedC(void* a, void* b) = 0;
    virtual void ReservedNoOpD(void* a, void* b) = 0;
    virtual void ReservedNoOpE(void* a, void* b, void* c) = 0;
    virtual void ReservedNoOpF(void* a, void* b, void* c) = 0;
    virtual void ReservedNoOpG(void* a, void* b, void* c) = 0;
    virtual void ReservedNoOpH(void* a, void* b, void* c) = 0;
    virtual void ReservedNoOpI(void* a, void* b, void* c) = 0;
    virtual void ReservedNoOpJ(void* a, void* b, void* c) = 0;
    virtual bool ReservedTrueB(uint32_t a) = 0;
    /// Whether bit `bit & 31` of the wrapper's `fDependencyBits` is set.
    virtual bool IsDependencyBitSet(void* a, const uint32_t& bit) = 0;
    virtual MCErr ReservedNotImplementedD(void* a, void* b, void* c) = 0;
    virtual bool ReservedFalseD(uint32_t a, void* b, void* c) = 0;
    /// Releases what `*out` held, stores null there and returns it.
    virtual IMCUnknown* ClearCountedOut(uint32_t a, void* b, IMCUnknown** out) = 0;
    virtual MCErr ReservedNotImplementedE(void* a) = 0;
#ifdef __MINGW32__
    // The platform passes room for a returned record after `this`; this compiler would pass it before.
    virtual TMCColorRGB* StoreWhite(TMCColorRGB* white) = 0;
    TMCColorRGB GetWhite()
    {
        TMCColorRGB white;
        return *StoreWhite(&white);
    }
#else
    virtual TMCColorRGB GetWhite() = 0;
#endif
    virtual float GetUnitScale() = 0;
    virtual MCErr ReservedNotImplementedF(void* a) = 0;

protected:
    ~I3DExShader() = default;
};
