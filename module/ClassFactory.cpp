#include "module/ClassFactory.h"
#include "frame/DebugReport.h"
#include "module/ClassRoutes.h"

MCErr ClassFactory::QueryInterface(const GUID& id, void** out)
{
    if (out != nullptr && SameGuid(id, IID_IExClassFactory)) {
        *out = static_cast<IExClassFactory*>(this);
        AddRef();
        return MC_S_OK;
    }
    return TBasicUnknown::QueryInterface(id, out);
}

MCErr ClassFactory::CreateInstance(IMCUnknown* outer, const GUID& id, void** out)
{
    TBasicUnknown* const object = MakeCOMObject(fClassID);
    if (object == nullptr) {
        if (out != nullptr)
            *out = nullptr;
        return kMCNoSuchClass;
    }
    object->SetOuterUnknown(outer);
    const MCErr res = object->QueryInterface(id, out);
    if (res != MC_S_OK) {
        MC_REPORT("res == MC_S_OK");
        object->SetOuterUnknown(nullptr);
    }
    object->Release();
    return res;
}

MCErr ClassFactory::LockServer(bool) { return MC_S_OK; }

TBasicUnknown* MakeCOMObject(const GUID& classID)
{
    for (const ClassRoute* route = kClassRoutes; route->fMake != nullptr; ++route)
        if (SameGuid(classID, route->fClassID))
            return route->fMake();
    return nullptr;
}
