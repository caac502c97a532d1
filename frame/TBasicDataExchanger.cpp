#include "frame/TBasicDataExchanger.h"
#include "frame/DebugReport.h"
#include "frame/TMCException.h"

MCErr TBasicDataExchanger::QueryInterface(const GUID& id, void** out)
{
    if (out != nullptr && SameGuid(id, IID_IExDataExchanger)) {
        *out = static_cast<IExDataExchanger*>(this);
        AddRef();
        return MC_S_OK;
    }
    return TBasicUnknown::QueryInterface(id, out);
}

void TBasicDataExchanger::CloneExtension(void** out, void*) { *out = nullptr; }

bool TBasicDataExchanger::ReservedExchangeTrue(void*) { return true; }

MCErr TBasicDataExchanger::ReservedExchangeA(uint32_t, void*) { return kMCNotImplemented; }

MCErr TBasicDataExchanger::ReservedExchangeB(uint32_t, void*) { return kMCNotImplemented; }

void* TBasicDataExchanger::GetExtensionDataBuffer()
{
    MC_REPORT("TBasicDataExchanger::GetExtensionDataBuffer() should NEVER be called");
    return nullptr;
}

MCErr TBasicDataExchanger::ExtensionDataChanged() { return MC_S_OK; }

int32_t TBasicDataExchanger::HandleEvent(uint32_t, void*, void*)
{
    return static_cast<int32_t>(kMCNotImplemented);
}

MCErr TBasicDataExchanger::ReservedExchangeC(uint32_t, void*, void*) { return kMCNotImplemented; }

void** TBasicDataExchanger::ReservedExchangeOut(void** out)
{
    *out = nullptr;
    return out;
}

int16_t TBasicDataExchanger::ReservedExchangeZeroA() { return 0; }

int16_t TBasicDataExchanger::ReservedExchangeZeroB() { return 0; }

MCErr TBasicDataExchanger::ReservedExchangeD() { return kMCNotImplemented; }

MCErr TBasicDataExchanger::ReservedExchangeE() { return kMCNotSupported; }

MCErr TBasicDataExchanger::ReservedExchangeF(void*) { return kMCNotSupported; }

uint32_t TBasicDataExchanger::GetParamsBufferSize() { throw TMCException(kMCPureCall); }
