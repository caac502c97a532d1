#include "tools/Checks.h"
#include "tools/Commands.h"
#include "tools/Completion.h"
#include <fmt/core.h>

void AddCompletionCommand(CLI::App& app)
{
    const auto shell = std::make_shared<std::string>();
    CLI::App& command
        = *app.add_subcommand("completion", "Prints the script by which a shell completes the command line.");
    command.add_option("shell", *shell, "bash or zsh")
        ->required()
        ->type_name("SHELL")
        ->check(OneOf({"bash", "zsh"}));
    command.footer(
        "`source <(fernwick completion bash)` is for the shell at hand alone; zsh takes the same.\n\n"
        "Examples:\n"
        "  fernwick completion bash >~/.local/share/bash-completion/completions/fernwick\n"
        "  fernwick completion zsh >~/.zfunc/_fernwick");
    command.callback(
        [&app, shell] { fmt::print("{}", *shell == "bash" ? BashCompletion(app) : ZshCompletion(app)); });
}
