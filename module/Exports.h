#pragma once
#include "frame/IMCUnknown.h"

// The six functions of the library, in the order in which a host uses them: `MCDllInit`; any number of
// `MCDllGetClassObject`, `CreateInstance`, shading and `Release`; `MCDllCleanUp`. `MCDllCanUnloadNow` may come
// at any time. The two translator functions let the host switch the translators on and off around its own
// calls into the library.
//
// A host loads them by name; the types below are theirs.

#ifdef _WIN32
#define MC_EXPORT __declspec(dllexport)
#else
#define MC_EXPORT __attribute__((visibility("default")))
#endif

extern "C" {

/// Takes the host's services from `utilities` and switches the exception translators on. Null raises the report
/// "utilities" and stores nothing. A second call takes the services anew and releases none of those before.
/// @return 0
MC_EXPORT MCErr MCDllInit(IMCUnknown* utilities);

/// Releases the host's services and switches the exception translator off. Works once in the life of the
/// loaded library; later calls do nothing.
/// @return 0
MC_EXPORT MCErr MCDllCleanUp();

/// Switches the exception translators on and keeps the one in force until then; a second call keeps the pack's
/// own.
/// @return 0
MC_EXPORT MCErr MCDllInitExceptionTranslator();

/// Puts back the translator that was kept; the other handlers stay.
/// @return 0
MC_EXPORT MCErr MCDllCleanUpExceptionTranslator();

/// Makes a class factory for `classID` and stores its face `id` into `*out`.
/// @return 0; `kMCNoInterface` for an unknown `id`; `kMCNoSuchClass` when memory is refused
MC_EXPORT MCErr MCDllGetClassObject(const GUID& classID, const GUID& id, void** out);

/// @return 0 when no component is alive, 1 when one is
MC_EXPORT MCErr MCDllCanUnloadNow();
}

/// The types under which a host keeps the six.
using MCDllInitFunction = decltype(&MCDllInit);
using MCDllCleanUpFunction = decltype(&MCDllCleanUp);
using MCDllInitExceptionTranslatorFunction = decltype(&MCDllInitExceptionTranslator);
using MCDllCleanUpExceptionTranslatorFunction = decltype(&MCDllCleanUpExceptionTranslator);
using MCDllGetClassObjectFunction = decltype(&MCDllGetClassObject);
using MCDllCanUnloadNowFunction = decltype(&MCDllCanUnloadNow);
