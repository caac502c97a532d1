#include "frame/ExceptionTranslators.h"

namespace {

using Translator = void (*)();

/// This platform has no translator of its own, so the one in force is always null.
Translator gTranslatorInForce = nullptr;
Translator gSavedTranslator = nullptr;

} // namespace

void InstallExceptionTranslators() { gSavedTranslator = gTranslatorInForce; }

void RestoreExceptionTranslator() { gTranslatorInForce = gSavedTranslator; }
