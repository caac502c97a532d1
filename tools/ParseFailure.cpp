#include "tools/ParseFailure.h"
#include "host/json/Nearest.h"
#include "tools/Commands.h"
#include "tools/HelpTree.h"
#include "tools/Streams.h"
#include "tools/Tell.h"
#include <algorithm>
#include <fmt/core.h>

namespace {

/// What the words that nothing takes begin with: the first option among them, else the first word. Empty for none.
std::string FirstExtra(const CLI::App& command)
{
    const std::vector<std::string> words = command.remaining();
    const auto option = std::find_if(
        words.begin(), words.end(), [](const std::string& word) { return word.starts_with('-'); });
    if (option != words.end())
        return option->substr(0, option->find('='));
    return words.empty() ? "" : words.front();
}

std::string ExtraText(const CLI::App& command, bool isWhole, const std::string& word)
{
    std::vector<std::string> names;
    if (word.starts_with('-')) {
        for (const CLI::Option* const option : OptionsOf(command))
            for (const std::string& name : NamesOf(*option))
                names.push_back(name);
        return fmt::format("there is no option \"{}\"{}", word, fernwick::NearestHint(word, names));
    }
    if (!isWhole)
        return fmt::format("\"{}\" is one argument too many", word);
    for (const CLI::App* const one : CommandsOf(command))
        names.push_back(one->get_name());
    return fmt::format("there is no command \"{}\"{}", word, fernwick::NearestHint(word, names));
}

} // namespace

int AnswerParseError(const CLI::App& app, const CLI::ParseError& error)
{
    if (error.get_exit_code() == 0) {
        std::ostringstream text;
        app.exit(error, text, text);
        PrintOnStdout(text.str());
        return kSucceeded;
    }
    const auto given = app.get_subcommands();
    const bool isWhole = given.empty(); // no command is named, or none that is known
    const CLI::App& command = isWhole ? app : *given.front();
    const std::string extra = FirstExtra(command); // a mistyped option is mostly why one is missing
    const bool isExtra = !extra.empty() && dynamic_cast<const CLI::ValidationError*>(&error) == nullptr;
    Tell(fmt::format("{}\n  `fernwick{} --help` tells more",
        isExtra ? ExtraText(command, isWhole, extra) : error.what(),
        isWhole ? "" : ' ' + command.get_name()));
    return kBadUsage;
}
