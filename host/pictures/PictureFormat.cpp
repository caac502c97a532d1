#include "host/pictures/PictureFormat.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

struct Ending {
    std::string_view ending;
    PictureFormat format;
};

constexpr Ending kEndings[] = {{".png", PictureFormat::kPNG}, {".exr", PictureFormat::kEXR},
    {".tif", PictureFormat::kTIFF}, {".tiff", PictureFormat::kTIFF}, {".tx", PictureFormat::kTexture}};

constexpr std::string_view kCompressions[]
    = {"zip", "none", "rle", "zips", "piz", "pxr24", "b44", "b44a", "dwaa", "dwab"};

constexpr int kPNGBits[] = {8, 16};
constexpr int kFloatBits[] = {16, 32};
constexpr int kTIFFBits[] = {8, 16, 32};

/// What there is to choose in files of a format.
struct Choices {
    PictureFormat format;
    std::string_view name;
    std::span<const int> bits;
    bool mayBeTiled;
    size_t compressions; // that it has, from the first on
};

constexpr Choices kChoices[] = {
    {PictureFormat::kPNG, "a .png", kPNGBits, false, 0},
    {PictureFormat::kEXR, "an .exr", kFloatBits, true, std::size(kCompressions)},
    {PictureFormat::kTIFF, "a .tif", kTIFFBits, true, 2},
    {PictureFormat::kTexture, "a .tx", kFloatBits, true, std::size(kCompressions)},
};

template <class Range, class Value> bool IsIn(const Range& range, const Value& value)
{
    return std::find(range.begin(), range.end(), value) != range.end();
}

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
        throw PictureError(path.string() + ": a picture's name ends in .png, .exr, .tif or .tx");
    std::error_code ignored; // of what can't be looked at; writing it tells why
    if (std::filesystem::is_directory(path, ignored))
        throw PictureError(path.string() + ": is a folder");
}

void RequireFit(const std::filesystem::path& path, const PictureLayout& layout)
{
    RequireSavable(path);
    const PictureFormat format = *FormatOf(path);
    const Choices& choices = *std::find_if(std::begin(kChoices), std::end(kChoices),
        [format](const Choices& one) { return one.format == format; });
    const auto fail = [&](const std::string& reason) {
        throw PictureError(fmt::format("{}: {} {}", path.string(), choices.name, reason));
    };
    if (layout.bits != 0 && !IsIn(choices.bits, layout.bits))
        fail(fmt::format("has {} bits a channel, not {}", fmt::join(choices.bits, " or "), layout.bits));
    if (layout.straight && !HoldsFloats(path, layout))
        fail(format == PictureFormat::kTIFF ? "has a straight alpha anyway, unless it has 32 bits"
                                            : "has a straight alpha anyway");
    if (layout.tiled && !choices.mayBeTiled)
        fail("has no tiles");
    const auto compressions = Compressions().first(choices.compressions);
    if (!layout.compression.empty() && compressions.empty())
        fail("has no choice of compressions");
    if (!layout.compression.empty() && !IsIn(compressions, layout.compression))
        fail(fmt::format(
            "is compressed by {}, not \"{}\"", fmt::join(compressions, " or "), layout.compression));
}

std::span<const std::string_view> Compressions() { return kCompressions; }

bool HoldsLayers(const std::filesystem::path& path) { return FormatOf(path) == PictureFormat::kEXR; }

bool HoldsFloats(const std::filesystem::path& path, const PictureLayout& layout)
{
    const auto format = FormatOf(path);
    return format == PictureFormat::kEXR || format == PictureFormat::kTexture
        || (format == PictureFormat::kTIFF && layout.bits == 32);
}

} // namespace fernwick
