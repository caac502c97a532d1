#include "tools/Streams.h"
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

void OpenMissingStreams()
{
    // The lowest free number is taken, so that each gets its own.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

void PrintOnStderr(const std::string& text) noexcept { std::fputs(text.c_str(), stderr); }

bool FinishStreams()
{
    errno = 0;
    std::cout.flush();
    const bool isWhole = std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout;
    if (!isWhole)
        PrintOnStderr("fernwick: stdout can't be written"
            + (errno != 0 ? std::string(": ") + std::strerror(errno) : std::string()) + '\n');
    return std::fflush(stderr) == 0 && std::ferror(stderr) == 0 && isWhole;
}
