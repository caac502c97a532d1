#include "tools/Interrupt.h"
#include <csignal>

namespace {

std::atomic<bool> gInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free); // for the handler

extern "C" void NoteInterrupt(int number)
{
    gInterrupted = true;
    std::signal(number, SIG_DFL);
}

} // namespace

const std::atomic<bool>& WatchForInterrupt()
{
    std::signal(SIGINT, NoteInterrupt);
    return gInterrupted;
}
