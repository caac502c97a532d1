#pragma once
#include <CLI/CLI.hpp>
#include <string>

/// Adds the required `--picture`, whose name is stored into `picture` when a picture can be saved by it.
void AddPictureOption(CLI::App& command, std::string& picture);
