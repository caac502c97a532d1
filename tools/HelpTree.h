#pragma once
#include <CLI/CLI.hpp>

// What the man page and the completions read off the commands, in the order of the help.

std::vector<const CLI::App*> CommandsOf(const CLI::App& app);
std::vector<const CLI::Option*> PositionalsOf(const CLI::App& command);
std::vector<const CLI::Option*> OptionsOf(const CLI::App& command); ///< that begin with a dash

/// The names of an option, such as `-o` and `--picture`.
std::vector<std::string> NamesOf(const CLI::Option& option);

/// False for a flag.
bool TakesValue(const CLI::Option& option);
