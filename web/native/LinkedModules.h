#pragma once
#include "module/Exports.h"

// `Fernwick_unrouted`, linked beside the pack's module: the same sources over other routes, their names changed in
// web/CMakeLists.txt.
extern "C" {
MCErr UnroutedInit(IMCUnknown* utilities);
MCErr UnroutedCleanUp();
MCErr UnroutedInitExceptionTranslator();
MCErr UnroutedCleanUpExceptionTranslator();
MCErr UnroutedGetClassObject(const GUID& classID, const GUID& id, void** out);
MCErr UnroutedCanUnloadNow();
}
