#pragma once
#include <string>

// Streams that are closed or full never end the command before its time.

/// Opens stdin, stdout and stderr where the command was started without them, so that no other file takes their
/// place. What is written to them fails. To be called first.
void OpenMissingStreams();

/// Writes a text on stderr as it is. What can't be written is noted for `FinishStreams`.
void PrintOnStderr(const std::string& text) noexcept;

/// Writes a text on stdout as it is. What can't be written is noted for `FinishStreams`.
void PrintOnStdout(const std::string& text) noexcept;

/// Notes for `FinishStreams` why stdout couldn't be written, as `errno` has it.
void NoteStdoutFailure(int reason) noexcept;

/// Writes out what is still in the buffers of stdout and stderr.
/// @return false, after telling of it on stderr with the reason, when not all that was printed could be written
bool FinishStreams();
