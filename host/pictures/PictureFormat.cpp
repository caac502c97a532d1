#include "host/pictures/PictureFormat.h"
#include <algorithm>

namespace fernwick {

namespace {

struct Ending {
    std::string_view ending;
    PictureFormat format;
};

constexpr Ending kEndings[] = {{".png", PictureFormat::kPNG}, {".exr", PictureFormat::kEXR}};

} // namespace

std::optional<PictureFormat> FormatOf(const std::filesystem::path& path)
{
    std::string ending = path.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    if (ending.empty() && IsStream(path))
        return PictureFormat::kPNG;
    for (const Ending& known : kEndings)
        if (known.ending == ending)
            return known.format;
    return std::nullopt;
}

void RequireSavable(const std::filesystem::path& path)
{
    if (!FormatOf(path))
        throw PictureError(path.string() + ": a picture's name ends in .png or .exr");
    std::error_code ignored; // of what can't be looked at; writing it tells why
    if (std::filesystem::is_directory(path, ignored))
        throw PictureError(path.string() + ": is a folder");
}

bool HoldsLayers(const std::filesystem::path& path) { return FormatOf(path) == PictureFormat::kEXR; }

} // namespace fernwick
