#pragma once
#include <CLI/CLI.hpp>

/// Prints the help or the version when that is what was asked for, else tells what is wrong with the command line, with
/// the likest name of what is mistyped.
/// @return what is answered to the shell
int AnswerParseError(const CLI::App& app, const CLI::ParseError& error);
