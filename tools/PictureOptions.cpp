#include "tools/PictureOptions.h"
#include "host/shading/SurfaceLayers.h"
#include "tools/Checks.h"
#include <CLI/CLI.hpp>
#include <charconv>
#include <fmt/format.h>

namespace {

constexpr int kLongestSide = 65536; // pixels
constexpr int kMostThreads = 1024;

std::string CheckSize(const std::string& size)
{
    int width = 0;
    int height = 0;
    if (ReadSize(size, width, height))
        return "";
    return fmt::format("\"{}\" is no size; a size is like 640x480, each side 1 to {}", size, kLongestSide);
}

/// Reads a region such as "0,0,640,480"; false for anything else, and for one without a pixel.
bool ReadRegion(const std::string& text, fernwick::PictureRegion& region)
{
    int* const sides[] = {&region.left, &region.top, &region.right, &region.bottom};
    const char* const end = text.data() + text.size();
    const char* at = text.data();
    for (int* const side : sides) {
        if (side != sides[0] && (at == end || *at++ != ','))
            return false;
        const auto [rest, failure] = std::from_chars(at, end, *side);
        if (failure != std::errc() || *side < 0)
            return false;
        at = rest;
    }
    return at == end && region.left < region.right && region.top < region.bottom;
}

std::string CheckRegion(const std::string& text)
{
    fernwick::PictureRegion region;
    if (ReadRegion(text, region))
        return "";
    return fmt::format(
        "\"{}\" is no region; one is like 0,0,320,240: left, top, and the right and bottom that aren't in it",
        text);
}

std::vector<std::string> LayerNames()
{
    std::vector<std::string> names = fernwick::SurfaceLayerGroups();
    names.insert(names.begin(), {"none", "all"});
    return names;
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
                    "The picture: .png (colours as sRGB), .exr (floats), .tif (either) or .tx (a texture "
                    "with smaller "
                    "copies); - is a PNG on stdout")
                ->required()
                ->type_name("FILE")
                ->check(CheckPicture);
}

CLI::Option& AddPictureOptions(CLI::App& command, PictureOptions& options)
{
    CLI::Option& picture = AddPictureOption(command, options.file);
    command
        .add_option("--bits", options.layout.bits,
            "Bits of a channel: 8 or 16 of a .png or .tif (else 8 for colours, 16 for all other numbers), 16 "
            "(half) "
            "or 32 of an .exr or .tx (else 32), 32 for floats in a .tif")
        ->type_name("N")
        ->check(OneOf({"8", "16", "32"}));
    command.add_flag("--straight", options.layout.straight,
        "Leaves the colours of floats as they are, not multiplied by the alpha");
    command.add_flag("--tiled", options.layout.tiled, "Lays an .exr or .tif out in tiles of 64 pixels");
    command
        .add_option("--compression", options.layout.compression,
            fmt::format("How an .exr or .tx is compressed: {} (else zip); a .tif by zip or none",
                fmt::join(fernwick::Compressions(), ", ")))
        ->type_name("NAME")
        ->check(OneOf({fernwick::Compressions().begin(), fernwick::Compressions().end()}));
    command.add_option("--size", options.size, "Width and height in pixels")
        ->type_name("WxH")
        ->check(CheckSize)
        ->capture_default_str();
    command
        .add_option("--region", options.region,
            "A part of the picture, in pixels from the upper left, the ends not included; it is what the "
            "whole "
            "picture has there")
        ->type_name("X0,Y0,X1,Y1")
        ->check(CheckRegion);
    command
        .add_option("--threads", options.threads, "Threads to shade with; the picture doesn't depend on it")
        ->type_name("N")
        ->check(WholeNumber(1, kMostThreads));
    return picture;
}

void AddLayersOption(CLI::App& command, PictureOptions& options)
{
    command
        .add_option("--layers", options.layers,
            fmt::format("Layers of an .exr, parted by commas: {}", fmt::join(LayerNames(), ", ")))
        ->type_name("NAMES")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(OneOf(LayerNames()))
        ->default_str("none");
}

std::optional<fernwick::PictureRegion> RegionOf(const PictureOptions& options)
{
    fernwick::PictureRegion region;
    return ReadRegion(options.region, region) ? std::optional(region) : std::nullopt;
}
