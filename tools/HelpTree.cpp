#include "tools/HelpTree.h"

std::vector<const CLI::App*> CommandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> PositionalsOf(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<const CLI::Option*> OptionsOf(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

std::vector<std::string> NamesOf(const CLI::Option& option)
{
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames())
        names.push_back('-' + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }
