#include "tools/Streams.h"
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

int gStdoutFailure = 0; // as errno has it

} // namespace

void OpenMissingStreams()
{
    // The lowest free number is taken, so that each gets its own.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

void PrintOnStderr(const std::string& text) noexcept { std::fputs(text.c_str(), stderr); }

void PrintOnStdout(const std::string& text) noexcept
{
    errno = 0;
    if (std::fputs(text.c_str(), stdout) == EOF)
        NoteStdoutFailure(errno);
}

void NoteStdoutFailure(int reason) noexcept { gStdoutFailure = reason; }

bool FinishStreams()
{
    errno = 0;
    const bool isWhole = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    const int reason = gStdoutFailure != 0 ? gStdoutFailure : errno;
    if (!isWhole)
        PrintOnStderr("fernwick: stdout can't be written"
            + (reason != 0 ? std::string(": ") + std::strerror(reason) : std::string()) + '\n');
    return std::fflush(stderr) == 0 && std::ferror(stderr) == 0 && isWhole;
}
