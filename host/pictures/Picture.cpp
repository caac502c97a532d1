#include "host/pictures/Picture.h"
#include <OpenImageIO/color.h>
#include <OpenImageIO/imageio.h>
#include <algorithm>
#include <fmt/format.h>
#include <random>

namespace fernwick {

namespace {

/// The format of a file by the end of its name; empty for any other than the two.
std::string FormatOf(const std::filesystem::path& path)
{
    std::string ending = path.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return ending == ".png" || ending == ".exr" ? ending.substr(1) : "";
}

/// 0 to 1; NaN gives 0.
float Clamped(float number) { return number >= 0 ? std::min(number, 1.0f) : 0.0f; }

uint8_t Byte(float number) { return static_cast<uint8_t>(Clamped(number) * 255.0f + 0.5f); }

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

/// A name beside `path` that no other writer has.
std::filesystem::path NameWhileWriting(const std::filesystem::path& path)
{
    std::filesystem::path name = path;
    name += fmt::format(".{:08x}.part", std::random_device()());
    return name;
}

/// The file under its passing name, removed unless it got its own.
struct UnfinishedFile {
    std::filesystem::path path;

    ~UnfinishedFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
};

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
    for (size_t i = 0; i < fPixels.size(); ++i) {
        TMCColorRGBA& color = fPixels[i];
        const TMCColorRGBA& below = ground.fPixels[i];
        const float alpha = Clamped(color.fAlpha);
        const float alphaBelow = Clamped(below.fAlpha) * (1 - alpha);
        const float sum = alpha + alphaBelow;
        const float share = sum > 0 ? alpha / sum : 0;
        const auto mixed = [share](float above, float under) {
            if (share <= 0 || share >= 1) // what is hidden may be anything
                return share <= 0 ? under : above;
            return share * above + (1 - share) * under;
        };
        color = {mixed(color.fRed, below.fRed), mixed(color.fGreen, below.fGreen),
            mixed(color.fBlue, below.fBlue), sum};
    }
}

void Picture::RequireSavable(const std::filesystem::path& path)
{
    if (FormatOf(path).empty())
        throw PictureError(path.string() + ": a picture's name ends in .png or .exr");
    if (std::filesystem::is_directory(path))
        throw PictureError(path.string() + ": is a folder");
}

bool Picture::HoldsLayers(const std::filesystem::path& path) { return FormatOf(path) == "exr"; }

void Picture::Save(const std::filesystem::path& path) const
{
    RequireSavable(path);
    std::error_code failure;
    if (path.has_parent_path())
        std::filesystem::create_directories(path.parent_path(), failure);
    if (failure)
        throw PictureError(fmt::format("{}: its folder can't be made: {}", path.string(), failure.message()));
    const UnfinishedFile file{NameWhileWriting(path)};
    try {
        Write(file.path, FormatOf(path));
    } catch (const PictureError& error) {
        throw PictureError(fmt::format("{}: can't be written: {}", path.string(), error.what()));
    }
    std::filesystem::rename(file.path, path, failure);
    if (failure)
        throw PictureError(fmt::format("{}: can't be written: {}", path.string(), failure.message()));
}

std::vector<uint8_t> Picture::Bytes() const
{
    std::vector<uint8_t> bytes;
    bytes.reserve(fPixels.size() * 4);
    for (const TMCColorRGBA& color : fPixels) {
        for (const float channel : {color.fRed, color.fGreen, color.fBlue})
            bytes.push_back(Byte(Encoded(channel, fContent)));
        bytes.push_back(Byte(color.fAlpha));
    }
    return bytes;
}

/// All channels, pixel by pixel.
std::vector<float> Picture::Floats() const
{
    std::vector<float> floats;
    floats.reserve(fPixels.size() * (4 + fChannels.size()));
    for (size_t i = 0; i < fPixels.size(); ++i) {
        const TMCColorRGBA& color = fPixels[i];
        floats.insert(floats.end(), {color.fRed, color.fGreen, color.fBlue, color.fAlpha});
        for (const auto& [name, values] : fChannels)
            floats.push_back(values[i]);
    }
    return floats;
}

void Picture::Write(const std::filesystem::path& path, const std::string& format) const
{
    const auto output = OIIO::ImageOutput::create(format);
    if (!output)
        throw PictureError(OIIO::geterror());
    const bool isFloat = format == "exr";
    OIIO::ImageSpec layout(fWidth, fHeight, 4, isFloat ? OIIO::TypeDesc::FLOAT : OIIO::TypeDesc::UINT8);
    if (isFloat)
        for (const auto& [name, values] : fChannels) {
            ++layout.nchannels;
            layout.channelnames.push_back(name);
        }
    layout.attribute("oiio:UnassociatedAlpha", 1);
    // The present time would make equal pictures unequal files.
    layout.attribute("DateTime", "1970:01:01 00:00:00");
    if (!isFloat && fContent == PictureContent::kColor)
        layout.attribute("oiio:ColorSpace", "sRGB");
    const bool written = output->open(path.string(), layout)
        && (isFloat ? output->write_image(OIIO::TypeDesc::FLOAT, Floats().data())
                    : output->write_image(OIIO::TypeDesc::UINT8, Bytes().data()))
        && output->close();
    if (!written)
        throw PictureError(output->geterror());
}

} // namespace fernwick
