#include "tools/Commands.h"
#include "tools/Interrupt.h"
#include "tools/Streams.h"
#include <cstdio>

namespace {

/// Tells why the command failed, but for stdout, of which `FinishStreams` tells.
void TellFailure(const std::exception& error)
{
    if (std::ferror(stdout) == 0)
        Tell(std::string("fernwick: ") + error.what() + '\n');
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
    AddValidateCommand(app);
    AddSchemaCommand(app);
    AddCompletionCommand(app);
    AddManCommand(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kSucceeded : kBadUsage;
    } catch (const UsageError& error) {
        TellFailure(error);
        return kBadUsage;
    } catch (const Interrupted&) {
        Tell("fernwick: stopped; nothing is written\n");
        return kInterrupted;
    } catch (const std::bad_alloc&) {
        Tell("fernwick: there isn't enough memory\n");
        return kFailed;
    } catch (const std::exception& error) {
        TellFailure(error);
        return kFailed;
    }
    if (app.get_subcommands().empty()) {
        Tell(app.help());
        return kBadUsage;
    }
    return kSucceeded;
}

} // namespace

int main(int argc, char** argv)
{
    OpenMissingStreams();
    LeaveNoUnfinishedFile();
    const int status = Run(argc, argv);
    return FinishStreams() || status != kSucceeded ? status : kFailed;
}
