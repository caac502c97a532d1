#include "tools/CommandFile.h"

namespace {

std::filesystem::path gCommand; // empty for this program

} // namespace

std::filesystem::path CommandFile()
{
    std::error_code unknown; // where /proc isn't mounted
    return gCommand.empty() ? std::filesystem::read_symlink("/proc/self/exe", unknown) : gCommand;
}

void WorkFor(const std::filesystem::path& command)
{
    if (command.is_absolute())
        gCommand = command;
}
