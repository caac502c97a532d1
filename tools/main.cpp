#include "host/library/Module.h"
#include "tools/CommandFile.h"
#include "tools/PictureCommands.h"
#include "tools/RunCommand.h"
#include <cerrno>
#include <fmt/core.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace {

constexpr const char* kProgram = "fernwick-pictures";

char** gArguments = nullptr;

/// Goes on as the program that works with pictures, scenes and rays, with the same command line; in the place of the
/// command's name stands the command's file. Throws when it can't be started.
[[noreturn]] void HandOver()
{
    std::string command = CommandFile().string();
    if (command.empty())
        throw std::runtime_error(fmt::format(
            "without /proc the command doesn't know where it lies, and so not where {} is", kProgram));
    const std::filesystem::path folder = std::filesystem::path(command).parent_path();
    constexpr const char* kRemedy = "build or install all of the command";
    if (std::filesystem::path(command).filename() == kProgram)
        throw std::runtime_error(fmt::format(
            "{}: this is the command itself, not the program that works with pictures and scenes; {}",
            command, kRemedy));
    const std::filesystem::path beside = folder / kProgram;
    const std::filesystem::path installed = (folder / "../lib/fernwick" / kProgram).lexically_normal();
    gArguments[0] = command.data();
    for (const std::filesystem::path& program : {beside, installed}) {
        std::string reason = fernwick::DamageOf(program);
        if (reason.empty()) {
            execv(program.c_str(), gArguments);
            if (errno == ENOENT)
                continue;
            reason = std::generic_category().message(errno);
        }
        throw std::runtime_error(
            fmt::format("{}: can't be started: {}; {}", program.string(), reason, kRemedy));
    }
    throw std::runtime_error(fmt::format("there is no {} and no {}, which works with pictures and scenes; {}",
        beside.string(), installed.string(), kRemedy));
}

} // namespace

void RunBake(const BakeCommandOptions&) { HandOver(); }
void RunShade(const ShadeOptions&) { HandOver(); }
void RunRender(const RenderOptions&) { HandOver(); }
void RunPlot(const PlotOptions&) { HandOver(); }
void RunScene(const SceneOptions&) { HandOver(); }
void RunReference(const ReferenceOptions&) { HandOver(); }

int main(int argc, char** argv)
{
    gArguments = argv;
    return RunCommand(argc, argv);
}
