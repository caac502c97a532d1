#include "tools/Interrupt.h"
#include "host/files/OutputFile.h"
#include "tools/Outcome.h"
#include <csignal>
#include <unistd.h>

namespace {

constexpr unsigned kPatience = 1; // seconds

std::atomic<bool> gInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free); // for the handlers

extern "C" void EndAtOnce(int)
{
    fernwick::RemoveUnfinishedFiles();
    constexpr char kLine[] = "\r\033[Kfernwick: stopped\n"; // in the place of a progress bar
    const bool hasBar = isatty(STDERR_FILENO) != 0;
    const char* const text = hasBar ? kLine : kLine + 4;
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, sizeof kLine - 1 - (hasBar ? 0 : 4));
    _exit(kInterrupted);
}

extern "C" void NoteInterrupt(int number)
{
    if (gInterrupted.exchange(true))
        EndAtOnce(number);
    alarm(kPatience);
}

extern "C" void CleanUpAndEnd(int number)
{
    fernwick::RemoveUnfinishedFiles();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

} // namespace

void LeaveNoUnfinishedFile()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXCPU, SIGPIPE})
        if (std::signal(number, number == SIGINT ? EndAtOnce : CleanUpAndEnd) == SIG_IGN)
            std::signal(number, SIG_IGN); // as the caller wants it
    std::signal(SIGXFSZ, SIG_IGN);
}

const std::atomic<bool>& WatchForInterrupt()
{
    std::signal(SIGALRM, EndAtOnce);
    std::signal(SIGINT, NoteInterrupt);
    return gInterrupted;
}
