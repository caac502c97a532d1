#include "module/ExceptionTranslators.h"

// This platform has no translator to install.

void InstallExceptionTranslators() { }

void RestoreExceptionTranslator() { }
