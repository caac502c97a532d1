#pragma once
#include "host/pictures/Picture.h"
#include "host/shading/Render.h"
#include "tools/Commands.h"
#include <optional>

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

/// Throws, before the work, `UsageError` when the options don't fit the kind of file, and `FileError` when it couldn't
/// be written. No file at all fits.
void RequireTarget(const PictureOptions& options);

/// Reads a size such as "640x480"; false for anything else.
bool ReadSize(const std::string& size, int& width, int& height);

/// The part of the picture that is asked for; none for all of it.
std::optional<fernwick::PictureRegion> RegionOf(const PictureOptions& options);

/// The job of a render with these options. It is cancelled by Ctrl-C. Throws `RenderError` when the memory that is free
/// doesn't hold the picture.
fernwick::RenderJob RenderJobOf(const PictureOptions& options, int samples);
