#include "tools/RunCommand.h"
#include "host/documents/SettingText.h"
#include "tools/Commands.h"
#include "tools/Interrupt.h"
#include "tools/ParseFailure.h"
#include "tools/Streams.h"
#include "tools/Tell.h"
#include <cstdio>
#include <fmt/format.h>
#include <system_error>

namespace {

/// Tells why the command failed, but for stdout, of which `FinishStreams` tells.
void TellFailure(const std::exception& error)
{
    if (std::ferror(stdout) == 0)
        Tell(error.what());
    else if (const auto* const failure = dynamic_cast<const std::system_error*>(&error))
        NoteStdoutFailure(failure->code().value());
}

/// @return what is answered to the shell
int Run(int argc, char** argv)
{
    CLI::App app("Looks at the Fernwick shaders, and bakes and renders pictures with them.", "fernwick");
    app.footer("Exit status: 0 done, 1 the job failed, 2 the command line is wrong, 130 stopped by Ctrl-C.\n"
               "`fernwick COMMAND --help` tells more, with an example.");
    app.set_version_flag("--version", "fernwick " FERNWICK_VERSION);
    app.require_subcommand(0, 1);
    app.get_formatter()->column_width(28);
    AddListCommand(app);
    AddDescribeCommand(app);
    AddBakeCommand(app);
    AddShadeCommand(app);
    AddReferenceCommand(app);
    AddPlotCommand(app);
    AddRenderCommand(app);
    AddSceneCommand(app);
    AddValidateCommand(app);
    AddSchemaCommand(app);
    AddCompletionCommand(app);
    AddManCommand(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return AnswerParseError(app, error);
    } catch (const UsageError& error) {
        TellFailure(error);
        return kBadUsage;
    } catch (const fernwick::SettingError& error) {
        TellFailure(error);
        return kBadUsage;
    } catch (const Interrupted& stop) {
        Tell(stop.written == 0 ? "stopped; nothing is written"
                               : fmt::format("stopped; {} pictures are written", stop.written));
        return kInterrupted;
    } catch (const std::bad_alloc&) {
        Tell("there isn't enough memory");
        return kFailed;
    } catch (const std::exception& error) {
        TellFailure(error);
        return kFailed;
    }
    if (app.get_subcommands().empty()) {
        PrintOnStderr(app.help());
        return kBadUsage;
    }
    return kSucceeded;
}

} // namespace

int RunCommand(int argc, char** argv)
{
    OpenMissingStreams();
    LeaveNoUnfinishedFile();
    const int status = Run(argc, argv);
    return FinishStreams() || status != kSucceeded ? status : kFailed;
}
