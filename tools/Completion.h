#pragma once
#include <CLI/CLI.hpp>

/// What may stand for a value in the command line.
struct CompletedValue {
    std::vector<std::string> words = {};
    bool isFile = false;
    bool isSetting = false; ///< FIELD=VALUE
    bool isPlug = false;    ///< FIELD=SOURCE
};

/// What may stand for the value of an option or for a positional, by the name of its type.
CompletedValue CompletedValueOf(const CLI::Option& option);

/// Functions for any shell that print words: `_fernwick_fields CLASS` those of `--set`, `_fernwick_slots CLASS` those
/// of `--plug`, and `_fernwick_values CLASS.FIELD` the choices of a field.
std::string FieldFunctions();

/// Words with a blank between them.
std::string WordList(const std::vector<std::string>& words);

std::string BashCompletion(const CLI::App& app);
std::string ZshCompletion(const CLI::App& app);
