#include "tools/Commands.h"
#include <fmt/core.h>

int main(int argc, char** argv)
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
        fmt::print(stderr, "fernwick: {}\n", error.what());
        return kBadUsage;
    } catch (const Interrupted&) {
        fmt::print(stderr, "fernwick: stopped; nothing is written\n");
        return kInterrupted;
    } catch (const std::bad_alloc&) {
        fmt::print(stderr, "fernwick: there isn't enough memory\n");
        return kFailed;
    } catch (const std::exception& error) {
        fmt::print(stderr, "fernwick: {}\n", error.what());
        return kFailed;
    }
    if (app.get_subcommands().empty()) {
        fmt::print(stderr, "{}", app.help());
        return kBadUsage;
    }
    return kSucceeded;
}
