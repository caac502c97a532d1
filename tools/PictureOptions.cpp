#include "tools/PictureOptions.h"
#include "host/pictures/Picture.h"
#include "tools/Interrupt.h"
#include <charconv>
#include <fmt/core.h>

namespace {

constexpr int kLongestSide = 16384; // pixels
constexpr int kMostThreads = 1024;

std::string CheckSize(const std::string& size)
{
    int width = 0;
    int height = 0;
    if (ReadSize(size, width, height))
        return "";
    return fmt::format("\"{}\" is no size; a size is like 640x480, each side 1 to {}", size, kLongestSide);
}

std::string CheckPicture(const std::string& picture)
{
    try {
        fernwick::RequireSavable(picture);
    } catch (const fernwick::PictureError& error) {
        return error.what();
    }
    return "";
}

} // namespace

bool ReadSize(const std::string& size, int& width, int& height)
{
    const char* const end = size.data() + size.size();
    const auto [cross, widthFailure] = std::from_chars(size.data(), end, width);
    if (widthFailure != std::errc() || cross == end || *cross != 'x')
        return false;
    const auto [rest, heightFailure] = std::from_chars(cross + 1, end, height);
    const auto isSide = [](int side) { return side >= 1 && side <= kLongestSide; };
    return heightFailure == std::errc() && rest == end && isSide(width) && isSide(height);
}

CLI::Option& AddPictureOption(CLI::App& command, std::string& picture)
{
    return *command
                .add_option("-o,--picture", picture,
                    "The picture: .png (colours as sRGB) or .exr (floats); - is a PNG on stdout")
                ->required()
                ->type_name("FILE")
                ->check(CheckPicture);
}

CLI::Option& AddPictureOptions(CLI::App& command, PictureOptions& options)
{
    CLI::Option& picture = AddPictureOption(command, options.file);
    command
        .add_option("--bits", options.layout.bits,
            "Bits of a channel of a .png, 8 or 16 (else 8 for colours, 16 for all other numbers)")
        ->type_name("N")
        ->check(CLI::IsMember({8, 16}).description(""));
    command.add_flag("--straight", options.layout.straight,
        "Leaves the colours of an .exr as they are, not multiplied by the alpha");
    command.add_option("--size", options.size, "Width and height in pixels")
        ->type_name("WxH")
        ->check(CheckSize)
        ->capture_default_str();
    command
        .add_option("--threads", options.threads, "Threads to shade with; the picture doesn't depend on it")
        ->type_name("N")
        ->check(CLI::Range(1, kMostThreads).description(""));
    return picture;
}

void RequireTarget(const PictureOptions& options)
{
    if (options.file.empty())
        return;
    const bool isFloat = fernwick::HoldsLayers(options.file);
    if (isFloat && options.layout.bits != 0)
        throw UsageError("--bits is for a .png; an .exr holds floats");
    if (!isFloat && options.layout.straight)
        throw UsageError("--straight is for an .exr; the alpha of a .png is straight anyway");
    fernwick::RequireWritable(options.file);
}

fernwick::RenderJob RenderJobOf(const PictureOptions& options, int samples)
{
    fernwick::RenderJob job;
    ReadSize(options.size, job.width, job.height);
    job.samples = samples;
    job.threads = options.threads;
    job.layers = fernwick::HoldsLayers(options.file);
    job.cancel = &WatchForInterrupt();
    return job;
}
