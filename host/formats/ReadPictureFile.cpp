#include "host/files/PictureAttributes.h"
#include "host/files/RegularFile.h"
#include "host/formats/PngChunks.h"
#include "host/formats/PsdSections.h"
#include "host/sources/PictureDecoding.h"
#include "host/sources/PictureFile.h"
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

constexpr int kLongestSide = 65536;                      // pixels
constexpr OIIO::imagesize_t kMostPixels = 16384 * 16384; // 4 GB of colours
constexpr const char* kLimitAttribute = "limits:imagesize_MB";

/// The decoders that bear damaged files. Those of IFF, RLA and Softimage crash or hang, and others aren't for pictures.
constexpr const char* kFormats[] = {"openexr", "tiff", "jpeg", "png", "gif", "bmp", "hdr", "webp", "pnm",
    "psd", "sgi", "ico", "dds", "dpx", "fits", "heif", "jpeg2000", "targa"};

/// @param reason  a decoder's may have several lines
SourceError Unreadable(const std::filesystem::path& file, std::string reason)
{
    for (size_t end = reason.find('\n'); end != std::string::npos; end = reason.find('\n', end))
        reason.replace(end, 1, end + 1 == reason.size() ? "" : "; ");
    return SourceError("file: " + file.string()
        + " can't be read: " + (reason.empty() ? "it is cut off or damaged" : reason));
}

/// Throws when a decoder tells what no picture has, or more than the memory is for.
void RequireSensible(const OIIO::ImageSpec& layout, const std::filesystem::path& file)
{
    if (layout.deep || layout.depth > 1)
        throw Unreadable(file, "it is no flat picture");
    const auto isSide = [](int side) { return side >= 1 && side <= kLongestSide; };
    if (!isSide(layout.width) || !isSide(layout.height) || layout.image_pixels() > kMostPixels)
        throw Unreadable(file,
            fmt::format("it is said to have {} x {} pixels; the most are 16384 x 16384", layout.width,
                layout.height));
    const bool hasTiles = layout.tile_width != 0;
    if (layout.nchannels < 1 || (hasTiles && (!isSide(layout.tile_width) || !isSide(layout.tile_height))))
        throw Unreadable(file, "");
}

/// Throws, with the size, when what a decoder tells is that the picture would take more memory than there is for it.
void RequireMemory(const OIIO::ImageSpec& layout, std::string_view reason, const std::filesystem::path& file)
{
    if (reason.find(kLimitAttribute) != std::string_view::npos)
        throw Unreadable(file,
            fmt::format("it is said to have {} x {} pixels of {} channels, which take more than 4 GB",
                layout.width, layout.height, layout.nchannels));
}

/// The decoder of a file by the end of its name, or else the one that takes it for its own; null for none.
std::unique_ptr<OIIO::ImageInput> CreateDecoder(const std::filesystem::path& file)
{
    const std::string ending = file.extension().string();
    auto named = ending.empty() ? nullptr : OIIO::ImageInput::create(ending.substr(1));
    if (named
        && std::find(std::begin(kFormats), std::end(kFormats), std::string_view(named->format_name()))
            == std::end(kFormats))
        named = nullptr;
    if (named && named->valid_file(file.string()))
        return named;
    for (const char* const format : kFormats)
        if (auto input = OIIO::ImageInput::create(format); input && input->valid_file(file.string()))
            return input;
    return named; // tells what is wrong
}

/// Opens a picture and tells how it is laid out.
std::unique_ptr<OIIO::ImageInput> Open(const std::filesystem::path& file, OIIO::ImageSpec& layout)
{
    // Some decoders take the memory for a whole picture while they open it.
    constexpr int kMostMegabytes = static_cast<int>(kMostPixels * sizeof(TMCColorRGBA) >> 20);
    [[maybe_unused]] static const bool isLimited = OIIO::attribute(kLimitAttribute, kMostMegabytes);
    if (file.empty())
        throw SourceError("file: expected the name of a picture file, got none");
    if (const std::string reason = WhyNoFile(file); !reason.empty())
        throw Unreadable(file, reason);
    if (const std::string reason = WhyNoPsd(file); !reason.empty())
        throw Unreadable(file, reason);
    OIIO::ImageSpec wishes;
    wishes.attribute("oiio:UnassociatedAlpha", 1);
    auto input = CreateDecoder(file);
    if (!input)
        throw Unreadable(file, "it is of no format that is known");
    if (input->format_name() == std::string_view("png"))
        if (const std::string reason = WhyNoPng(file); !reason.empty())
            throw Unreadable(file, reason);
    if (!input->open(file.string(), layout, wishes)) {
        const std::string reason = input->geterror();
        RequireMemory(input->spec(), reason, file);
        throw Unreadable(file, reason);
    }
    RequireSensible(layout, file);
    return input;
}

/// The channel that is the alpha, -1 without one. The decoder of GIF files names the one behind the last.
int AlphaChannel(const OIIO::ImageSpec& layout)
{
    if (layout.alpha_channel < layout.nchannels)
        return std::max(layout.alpha_channel, -1);
    const auto& names = layout.channelnames;
    const auto place = std::find(names.begin(), names.end(), "A") - names.begin();
    return place < std::min<ptrdiff_t>(std::ssize(names), layout.nchannels) ? static_cast<int>(place) : -1;
}

/// A picture with fewer than three channels beside the alpha is grey, and shows the first.
PictureChannels FindChannels(const OIIO::ImageSpec& layout)
{
    const int alpha = AlphaChannel(layout);
    std::vector<int> colors;
    for (int channel = 0; channel < layout.nchannels && colors.size() < 3; ++channel)
        if (channel != alpha)
            colors.push_back(channel);
    if (colors.size() < 3)
        colors.assign(3, colors.empty() ? 0 : colors.front());
    return {{colors[0], colors[1], colors[2]}, alpha, std::max(colors[2], alpha) + 1};
}

bool IsEncoded(const OIIO::ImageSpec& layout, int32_t setting)
{
    if (setting != kEncodedAsUsual)
        return setting == kEncodedSRGB;
    const bool saysLinear = OIIO::Strutil::iequals(layout.get_string_attribute("oiio:ColorSpace"), "linear")
        || layout.get_string_attribute("ImageDescription") == kLinearDescription;
    return !layout.format.is_floating_point() && !saysLinear;
}

bool IsPremultiplied(const OIIO::ImageSpec& layout, std::string_view format, int32_t setting)
{
    if (setting != kAlphaAsUsual)
        return setting == kAlphaPremultiplied;
    if (layout.get_int_attribute("oiio:UnassociatedAlpha") != 0
        || layout.get_string_attribute(kAlphaAttribute) == kStraightAlpha)
        return false;
    return format == "openexr" || format == "tiff" || format == "webp";
}

/// Reads a picture in stretches of rows, so that one that is cut off is refused before it takes memory.
std::vector<TMCColorRGBA> ReadPixels(OIIO::ImageInput& input, const OIIO::ImageSpec& layout,
    const PictureDecoding& decoding, const std::filesystem::path& file)
{
    constexpr int kNumbersAtATime = 1 << 22;
    const int count = decoding.channels.count;
    const bool hasTiles = layout.tile_width != 0;
    const int unit = hasTiles ? layout.tile_height : 1;
    const int rows = std::max(kNumbersAtATime / (layout.width * count) / unit, 1) * unit;
    std::vector<TMCColorRGBA> pixels;
    std::vector<float> numbers;
    for (int top = 0; top < layout.height; top += rows) {
        const int height = std::min(rows, layout.height - top);
        const auto width = static_cast<size_t>(layout.width);
        numbers.assign(width * static_cast<size_t>(height) * static_cast<size_t>(count), 0);
        const int y = layout.y + top;
        const bool isRead = hasTiles
            ? input.read_tiles(0, 0, layout.x, layout.x + layout.width, y, y + height, layout.z, layout.z + 1,
                0, count, OIIO::TypeDesc::FLOAT, numbers.data())
            : input.read_scanlines(
                0, 0, y, y + height, layout.z, 0, count, OIIO::TypeDesc::FLOAT, numbers.data());
        // Some decoders tell of a file that is cut off and yet make a picture of it.
        if (!isRead || input.has_error())
            throw Unreadable(file, input.geterror());
        pixels.reserve(layout.image_pixels());
        for (size_t i = 0; i < numbers.size(); i += static_cast<size_t>(count))
            pixels.push_back(decoding.ColorOf(&numbers[i]));
    }
    return pixels;
}

} // namespace

FilePicture ReadPictureFile(const PictureSettings& settings)
{
    try {
        OIIO::ImageSpec layout;
        const auto input = Open(settings.fFile, layout);
        const PictureDecoding decoding = {FindChannels(layout), IsEncoded(layout, settings.fEncoding),
            IsPremultiplied(layout, input->format_name(), settings.fAlpha)};
        return {layout.width, layout.height, ReadPixels(*input, layout, decoding, settings.fFile)};
    } catch (const SourceError&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw Unreadable(settings.fFile, "there isn't enough memory for it");
    } catch (const std::exception& error) { // of a decoder
        throw Unreadable(settings.fFile, error.what());
    }
}

} // namespace fernwick
