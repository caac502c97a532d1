#include "host/pictures/Picture.h"
#include "host/files/PictureAttributes.h"
#include "host/pictures/LayOver.h"
#include <OpenImageIO/color.h>
#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <limits>

namespace fernwick {

namespace {

/// The present time would make equal pictures unequal files.
constexpr const char* kNoTime = "1970:01:01 00:00:00";

/// The format of a file by the end of its name, PNG for a stream without one; empty for any other than the two.
std::string FormatOf(const std::filesystem::path& path)
{
    std::string ending = path.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    if (ending.empty() && IsStream(path))
        return "png";
    return ending == ".png" || ending == ".exr" ? ending.substr(1) : "";
}

/// 0 to 1; NaN gives 0.
float Clamped(float number) { return number >= 0 ? std::min(number, 1.0f) : 0.0f; }

float Encoded(float number, PictureContent content)
{
    switch (content) {
    case PictureContent::kColor:
        return OIIO::linear_to_sRGB(Clamped(number));
    case PictureContent::kNormal:
        return (number + 1) / 2;
    case PictureContent::kValue:
        break;
    }
    return number;
}

/// Adds the numbers of a row, pixel by pixel.
using ReadRow = std::function<void(int y, std::vector<float>& numbers)>;

template <class Integer> std::vector<Integer> Integers(const std::vector<float>& numbers)
{
    constexpr auto kGreatest = static_cast<float>(std::numeric_limits<Integer>::max());
    std::vector<Integer> integers;
    integers.reserve(numbers.size());
    for (const float number : numbers)
        integers.push_back(static_cast<Integer>(Clamped(number) * kGreatest + 0.5f));
    return integers;
}

/// Writes all rows into memory, where no disk can fail behind a library's back.
/// @return the bytes of the file
std::vector<unsigned char> FileBytes(
    const std::string& format, const OIIO::ImageSpec& layout, const ReadRow& readRow)
{
    constexpr int kRowsAtATime = 64;
    OIIO::Filesystem::IOVecOutput bytes;
    const auto output = OIIO::ImageOutput::create(format, &bytes);
    if (!output)
        throw PictureError(OIIO::geterror());
    const auto require = [&output](bool done) {
        if (!done)
            throw PictureError(output->geterror());
    };
    require(output->open("." + format, layout));
    for (int top = 0; top < layout.height; top += kRowsAtATime) {
        const int end = std::min(top + kRowsAtATime, layout.height);
        std::vector<float> numbers;
        for (int y = top; y < end; ++y)
            readRow(y, numbers);
        if (layout.format == OIIO::TypeDesc::UINT8)
            require(output->write_scanlines(top, end, 0, layout.format, Integers<uint8_t>(numbers).data()));
        else if (layout.format == OIIO::TypeDesc::UINT16)
            require(output->write_scanlines(top, end, 0, layout.format, Integers<uint16_t>(numbers).data()));
        else
            require(output->write_scanlines(top, end, 0, layout.format, numbers.data()));
    }
    require(output->close());
    return std::move(bytes.buffer());
}

} // namespace

Picture::Picture(int width, int height, PictureContent content)
    : fWidth(width), fHeight(height), fContent(content),
      fPixels(static_cast<size_t>(width) * static_cast<size_t>(height), TMCColorRGBA{0, 0, 0, 0})
{ }

void Picture::AddChannel(std::string name, std::vector<float> values)
{
    fChannels.emplace_back(std::move(name), std::move(values));
}

void Picture::LayOver(const Picture& ground)
{
    fernwick::LayOver(fPixels, ground.fPixels);
}

void Picture::RequireSavable(const std::filesystem::path& path)
{
    if (FormatOf(path).empty())
        throw PictureError(path.string() + ": a picture's name ends in .png or .exr");
    std::error_code ignored; // of what can't be looked at; writing it tells why
    if (std::filesystem::is_directory(path, ignored))
        throw PictureError(path.string() + ": is a folder");
}

bool Picture::HoldsLayers(const std::filesystem::path& path) { return FormatOf(path) == "exr"; }

void Picture::Save(const std::filesystem::path& path, const PictureLayout& layout) const
{
    RequireSavable(path);
    std::vector<unsigned char> bytes;
    try {
        bytes = FormatOf(path) == "exr" ? FloatFile(layout.straight) : IntegerFile(layout.bits);
    } catch (const PictureError& error) {
        throw PictureError(fmt::format("{}: can't be written: {}", path.string(), error.what()));
    }
    MakeFolderOf(path);
    WriteFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::vector<unsigned char> Picture::IntegerFile(int bits) const
{
    const bool isColor = fContent == PictureContent::kColor;
    const bool isCoarse = bits == 8 || (bits == 0 && isColor);
    OIIO::ImageSpec layout(fWidth, fHeight, 4, isCoarse ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::UINT16);
    layout.attribute("oiio:UnassociatedAlpha", 1);
    layout.attribute("DateTime", kNoTime);
    layout.attribute("oiio:ColorSpace", isColor ? "sRGB" : "Linear");
    return FileBytes("png", layout, [this](int y, std::vector<float>& numbers) {
        for (int x = 0; x < fWidth; ++x) {
            const TMCColorRGBA& color = At(x, y);
            for (const float channel : {color.fRed, color.fGreen, color.fBlue})
                numbers.push_back(Encoded(channel, fContent));
            numbers.push_back(color.fAlpha);
        }
    });
}

std::vector<unsigned char> Picture::FloatFile(bool straight) const
{
    OIIO::ImageSpec layout(fWidth, fHeight, 4, OIIO::TypeDesc::FLOAT);
    for (const auto& [name, values] : fChannels) {
        ++layout.nchannels;
        layout.channelnames.push_back(name);
    }
    layout.attribute("DateTime", kNoTime);
    layout.attribute(kAlphaAttribute, straight ? kStraightAlpha : kPremultipliedAlpha);
    return FileBytes("exr", layout, [this, straight](int y, std::vector<float>& numbers) {
        for (int x = 0; x < fWidth; ++x) {
            const TMCColorRGBA& color = At(x, y);
            const float factor = straight ? 1 : color.fAlpha;
            for (const float channel : {color.fRed, color.fGreen, color.fBlue})
                numbers.push_back(factor != 0 ? channel * factor : 0); // what is hidden may be anything
            numbers.push_back(color.fAlpha);
            for (const auto& [name, values] : fChannels)
                numbers.push_back(values[Index(x, y)]);
        }
    });
}

} // namespace fernwick
