#pragma once
#include "frame/IExClassFactory.h"
#include "frame/TBasicUnknown.h"

/// The factory that `MCDllGetClassObject` hands out. It takes any class identifier; whether the pack has the
/// class shows in `CreateInstance`.
class ClassFactory final : public TBasicUnknown, public IExClassFactory {
public:
    explicit ClassFactory(const GUID& classID) : fClassID(classID) { }

    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override { return TBasicUnknown::AddRef(); }
    uint32_t Release() override { return ReleaseComponent(this); }

    MCErr CreateInstance(IMCUnknown* outer, const GUID& id, void** out) override;
    MCErr LockServer(bool lock) override;

private:
    GUID fClassID;
};

/// Walks the class routes in order and makes an object of the first match, with count 1. Null when no route
/// matches or memory is refused.
TBasicUnknown* MakeCOMObject(const GUID& classID);
