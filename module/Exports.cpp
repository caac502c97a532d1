#include "module/Exports.h"
#include "frame/DebugReport.h"
#include "frame/HostServices.h"
#include "frame/MCCountedPtr.h"
#include "module/ClassFactory.h"
#include "module/ExceptionTranslators.h"

/// Set once, makes further clean-ups no-ops.
static bool gCleanedUp = false;

MCErr MCDllInit(IMCUnknown* utilities)
{
    if (utilities == nullptr) {
        MC_REPORT("utilities");
        return MC_S_OK;
    }
    QueryServices(utilities);
    ReadHostSettings();
    InstallExceptionTranslators();
    return MC_S_OK;
}

MCErr MCDllCleanUp()
{
    if (gCleanedUp)
        return MC_S_OK;
    ReleaseServices();
    RestoreExceptionTranslator();
    gCleanedUp = true;
    return MC_S_OK;
}

MCErr MCDllInitExceptionTranslator()
{
    InstallExceptionTranslators();
    return MC_S_OK;
}

MCErr MCDllCleanUpExceptionTranslator()
{
    RestoreExceptionTranslator();
    return MC_S_OK;
}

MCErr MCDllGetClassObject(const GUID& classID, const GUID& id, void** out)
{
    const MCCountedPtr<ClassFactory> factory(new ClassFactory(classID));
    if (!factory) { // refused memory: the counted pointer's report, and a failure
        MC_REPORT("Bad Pointer");
        if (out != nullptr)
            *out = nullptr;
        return kMCNoSuchClass;
    }
    factory->Release(); // the constructor's reference: the pointer's is the only one from here on
    return factory->QueryInterface(id, out);
}

MCErr MCDllCanUnloadNow() { return gLiveComponentCount > 0 ? 1 : 0; }
