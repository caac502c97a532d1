#include "frame/TBasicShader.h"
#include "frame/DebugReport.h"
#include "frame/IShellDataComponent.h"
#include "frame/IShellShader.h"
#include "frame/MCCountedPtr.h"
#include "frame/Query.h"
#include "frame/TMCException.h"

MCErr TBasicShader::QueryInterface(const GUID& id, void** out)
{
    if (out != nullptr && SameGuid(id, IID_I3DExShader)) {
        *out = static_cast<I3DExShader*>(this);
        AddRef();
        return MC_S_OK;
    }
    return TBasicDataExchanger::QueryInterface(id, out);
}

int32_t TBasicShader::SameParameters(I3DExShader* other)
{
    if (other == nullptr)
        return false;
    MCCountedPtr<IShellDataComponent> component;
    MCCountedPtr<IShellDataComponent> otherComponent;
    Query(*static_cast<I3DExShader*>(this), IID_IShellDataComponent, component);
    Query(*other, IID_IShellDataComponent, otherComponent);
    return component && otherComponent && component->IsEqualToComponent(otherComponent.Get());
}

MCErr TBasicShader::ReportNeeds(ShadingFlags&) { return kMCNotImplemented; }

bool TBasicShader::QueryBooleanTrait() { return true; }

int32_t TBasicShader::GetOutputKinds() { return 0; }

bool TBasicShader::ReservedFalseA(void*) { return false; }

MCErr TBasicShader::ReservedNotImplementedA(void*, void*, void*) { return kMCNotImplemented; }

int32_t TBasicShader::ShadeSurface(ShadingOut& result, ShadingIn& in)
{
    MCCountedPtr<IShellShader> wrapper;
    Query(*static_cast<I3DExShader*>(this), IID_IShellShader, wrapper);
    result.fShadingNormal = in.fNormalLocal;
    if (wrapper) {
        result.fCoverage = 1.0f;
        wrapper->ShadeColor(result.fColor, result.fFullArea, in);
    }
    return 0;
}

float TBasicShader::ShadeValue(float&, bool&, ShadingIn&) { return kFullCoverage; }

float TBasicShader::ShadeColor(TMCColorRGBA& color, bool&, ShadingIn&)
{
    color = TMCColorRGBA::kOpaqueBlack;
    return kFullCoverage;
}

void TBasicShader::ObsoleteCallA(void*, void*) { MC_REPORT("Should not be called"); }

void TBasicShader::ObsoleteCallB(void*, void*) { MC_REPORT("Should not be called"); }

void TBasicShader::ReservedNoOpA(void*, void*) { }

void TBasicShader::ReservedNoOpB(void*, void*) { }

float TBasicShader::ShadeVector(TVector3&, ShadingIn&) { return kFullCoverage; }

MCErr TBasicShader::ReservedNotImplementedB(void*, void*) { return kMCNotImplemented; }

void TBasicShader::ReservedNoOpC(void*) { }

bool TBasicShader::ReservedTrueA() { return true; }

bool TBasicShader::ReservedFalseB(void*, void*) { return false; }

int32_t TBasicShader::ClearOutPointer(void*, void*, void** out)
{
    *out = nullptr;
    return 1;
}

bool TBasicShader::StoreCountedOut(IMCUnknown** out, IMCUnknown* object, void*)
{
    if (out == nullptr) {
        MC_REPORT("out");
        return true; // nowhere to store it
    }
    if (object != nullptr)
        object->AddRef();
    *out = object;
    return true;
}

void TBasicShader::ForwardToDataComponent(void* a)
{
    MCCountedPtr<IShellDataComponent> component;
    Query(*static_cast<I3DExShader*>(this), IID_IShellDataComponent, component);
    if (!component)
        throw TMCException(kMCNoComponent, __FILE__, __LINE__);
    component->ForwardToComponent(a);
}

bool TBasicShader::ReservedFalseC(uint32_t) { return false; }

int32_t TBasicShader::ReservedMinusOne(uint32_t) { return -1; }

int32_t TBasicShader::ReservedZeroA() { return 0; }

int32_t TBasicShader::ReservedZeroB(uint32_t) { return 0; }

MCErr TBasicShader::ReservedNotImplementedC(void*, void*) { return kMCNotImplemented; }

void TBasicShader::ReservedNoOpD(void*, void*) { }

void TBasicShader::ReservedNoOpE(void*, void*, void*) { }

void TBasicShader::ReservedNoOpF(void*, void*, void*) { }

void TBasicShader::ReservedNoOpG(void*, void*, void*) { }

void TBasicShader::ReservedNoOpH(void*, void*, void*) { }

void TBasicShader::ReservedNoOpI(void*, void*, void*) { }

void TBasicShader::ReservedNoOpJ(void*, void*, void*) { }

bool TBasicShader::ReservedTrueB(uint32_t) { return true; }

bool TBasicShader::IsDependencyBitSet(void*, const uint32_t& bit)
{
    MCCountedPtr<IShellShader> shShader;
    Query(*static_cast<I3DExShader*>(this), IID_IShellShader, shShader);
    if (!shShader) {
        MC_REPORT("shShader");
        return false;
    }
    ShadingFlags flags;
    shShader->GetShadingFlags(flags);
    return (static_cast<uint32_t>(flags.fDependencyBits) >> (bit & 31) & 1) != 0;
}

MCErr TBasicShader::ReservedNotImplementedD(void*, void*, void*) { return kMCNotImplemented; }

bool TBasicShader::ReservedFalseD(uint32_t, void*, void*) { return false; }

IMCUnknown* TBasicShader::ClearCountedOut(uint32_t, void*, IMCUnknown** out)
{
    IMCUnknown* const held = *out;
    *out = nullptr;
    if (held != nullptr)
        held->Release();
    return nullptr;
}

MCErr TBasicShader::ReservedNotImplementedE(void*) { return kMCNotImplemented; }

#ifdef __MINGW32__
TMCColorRGB* TBasicShader::StoreWhite(TMCColorRGB* white)
{
    *white = TMCColorRGB::kWhite;
    return white;
}
#else
TMCColorRGB TBasicShader::GetWhite() { return TMCColorRGB::kWhite; }
#endif

float TBasicShader::GetUnitScale() { return 1.0f; }

MCErr TBasicShader::ReservedNotImplementedF(void*) { return kMCNotImplemented; }

MCErr TBasicShader::Ask(ShadingFlags& flags, uint16_t needs)
{
    flags.fNeeds = static_cast<uint16_t>(flags.fNeeds | needs);
    flags.fDependencyBits = 0;
    return MC_S_OK;
}
