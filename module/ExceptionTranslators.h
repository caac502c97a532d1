#pragma once

/// Installs the translators that turn faults of the processor and of the runtime into `TMCException`, where the
/// platform has such; the translator that was in force before is kept for the way back.
void InstallExceptionTranslators();

/// Puts the kept translator back. The other handlers stay.
void RestoreExceptionTranslator();
