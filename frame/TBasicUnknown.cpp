#include "frame/TBasicUnknown.h"
#include "frame/DebugReport.h"
#include "frame/TMCException.h"

int32_t gLiveComponentCount = 0;

/// An outer object's answer to the release that its own destruction makes.
static constexpr uint32_t kOuterIsGone = 0xFFFFFFFF;

MCErr TBasicUnknown::QueryInterface(const GUID& id, void** out)
{
    if (out == nullptr) { // nowhere to store an answer
        MC_REPORT("out");
        return kMCNoInterface;
    }
    if (SameGuid(id, IID_IMCUnknown)) {
        *out = static_cast<IMCUnknown*>(this);
        AddRef();
        return MC_S_OK;
    }
    if (fOuterUnknown != nullptr)
        return fOuterUnknown->QueryInterface(id, out);
    *out = nullptr;
    return kMCNoInterface;
}

uint32_t TBasicUnknown::AddRef()
{
    if (fOuterUnknown != nullptr)
        return fOuterUnknown->AddRef();
    return static_cast<uint32_t>(++fRefCount);
}

uint32_t TBasicUnknown::DropReference(bool& last)
{
    if (fOuterUnknown != nullptr) {
        const uint32_t answer = fOuterUnknown->Release();
        last = answer == kOuterIsGone;
        return answer;
    }
    --fRefCount;
    if (fRefCount < 0)
        throw TMCException(kMCCountUnderflow);
    last = fRefCount == 0;
    return static_cast<uint32_t>(fRefCount);
}
