#pragma once
#include "frame/I3DExShader.h"
#include "frame/TBasicDataExchanger.h"

/// The defaults of `I3DExShader`. A class overrides what it offers; the rest keep their places.
class TBasicShader : public I3DExShader, public TBasicDataExchanger {
public:
    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override { return TBasicUnknown::AddRef(); }

    /// Asks the host's data components of both shaders whether they hold equal data.
    int32_t SameParameters(I3DExShader* other) override;
    MCErr ReportNeeds(ShadingFlags& flags) override;
    bool QueryBooleanTrait() override;
    int32_t GetOutputKinds() override;
    bool ReservedFalseA(void* a) override;
    MCErr ReservedNotImplementedA(void* a, void* b, void* c) override;
    /// Answers with the colour of the wrapper's `ShadeColor`, and 0.
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override;
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;
    void ObsoleteCallA(void* a, void* b) override;
    void ObsoleteCallB(void* a, void* b) override;
    void ReservedNoOpA(void* a, void* b) override;
    void ReservedNoOpB(void* a, void* b) override;
    float ShadeVector(TVector3& vector, ShadingIn& in) override;
    MCErr ReservedNotImplementedB(void* a, void* b) override;
    void ReservedNoOpC(void* a) override;
    bool ReservedTrueA() override;
    bool ReservedFalseB(void* a, void* b) override;
    int32_t ClearOutPointer(void* a, void* b, void** out) override;
    bool StoreCountedOut(IMCUnknown** out, IMCUnknown* object, void* c) override;
    void ForwardToDataComponent(void* a) override;
    bool ReservedFalseC(uint32_t a) override;
    int32_t ReservedMinusOne(uint32_t a) override;
    int32_t ReservedZeroA() override;
    int32_t ReservedZeroB(uint32_t a) override;
    MCErr ReservedNotImplementedC(void* a, void* b) override;
    void ReservedNoOpD(void* a, void* b) override;
    void ReservedNoOpE(void* a, void* b, void* c) override;
    void ReservedNoOpF(void* a, void* b, void* c) override;
    void ReservedNoOpG(void* a, void* b, void* c) override;
    void ReservedNoOpH(void* a, void* b, void* c) override;
    void ReservedNoOpI(void* a, void* b, void* c) override;
    void ReservedNoOpJ(void* a, void* b, void* c) override;
    bool ReservedTrueB(uint32_t a) override;
    bool IsDependencyBitSet(void* a, const uint32_t& bit) override;
    MCErr ReservedNotImplementedD(void* a, void* b, void* c) override;
    bool ReservedFalseD(uint32_t a, void* b, void* c) override;
    IMCUnknown* ClearCountedOut(uint32_t a, void* b, IMCUnknown** out) override;
    MCErr ReservedNotImplementedE(void* a) override;
#ifdef __MINGW32__
    TMCColorRGB* StoreWhite(TMCColorRGB* white) override;
#else
    TMCColorRGB GetWhite() override;
#endif
    float GetUnitScale() override;
    MCErr ReservedNotImplementedF(void* a) override;

protected:
    ~TBasicShader() = default;

    /// The body of every `ReportNeeds`.
    static MCErr Ask(ShadingFlags& flags, uint16_t needs);
};
