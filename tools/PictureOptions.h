#pragma once
#include "host/pictures/PictureFormat.h"

namespace CLI {
class App;
class Option;
} // namespace CLI

constexpr int kMostSamples = 4096; // a pixel

/// What the commands that make a picture share.
struct PictureOptions {
    std::string file;
    std::string size = "512x512";
    std::string region; ///< empty for all
    std::vector<std::string> layers = {"none"};
    int threads = 0; ///< 0 for one a processor
    fernwick::PictureLayout layout = {};
};

/// Adds `-o`, the picture that a command writes; an ending that no picture has is bad usage. It is required; the
/// command can free it of that.
/// @return the option of the picture
CLI::Option& AddPictureOption(CLI::App& command, std::string& picture);

/// Adds `-o`, `--size`, `--region`, `--threads` and how the file is laid out, checked as they are read.
/// @return the option of the picture
CLI::Option& AddPictureOptions(CLI::App& command, PictureOptions& options);

/// Adds `--layers`, for a command that renders.
void AddLayersOption(CLI::App& command, PictureOptions& options);

/// Reads a size such as "640x480"; false for anything else.
bool ReadSize(const std::string& size, int& width, int& height);

/// The part of the picture that is asked for; none for all of it.
std::optional<fernwick::PictureRegion> RegionOf(const PictureOptions& options);
