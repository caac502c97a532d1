#pragma once
#include <CLI/CLI.hpp>
#include <string>
#include <vector>

// What a value of the command line must be. They tell of any other value in the command's own words.

/// One of the words, exactly; else the likest is told.
CLI::Validator OneOf(std::vector<std::string> words);

/// An integer, or any number, from `least` to `most`.
CLI::Validator WholeNumber(int least, int most);
CLI::Validator AnyNumber(double least, double most);
