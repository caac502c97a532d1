#pragma once
#include "tools/PictureOptions.h"

/// What a command line tells about baking.
struct BakeOptions {
    PictureOptions picture;
    std::vector<std::string> channels = {"color"};
    std::string over;
    int samples = 1; ///< a pixel
    bool isLit = false;
    bool isDirectX = false;
};

/// The channels, one a line, for the help of a command with these options.
extern const char* const kChannelHelp;

std::vector<std::string> ChannelNames();

/// Adds the options. `--picture` is required; the command can free it of that.
/// @return the option of the picture
CLI::Option& AddBakeOptions(CLI::App& command, BakeOptions& options);
