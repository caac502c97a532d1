#include "host/sources/PictureSource.h"
#include <OpenImageIO/color.h>
#include <OpenImageIO/imageio.h>
#include <algorithm>

namespace fernwick {

namespace {

SourceError Unreadable(const std::filesystem::path& file, const std::string& reason)
{
    return SourceError("file: " + file.string() + " can't be read: " + reason);
}

/// Opens a picture and tells how it is laid out.
std::unique_ptr<OIIO::ImageInput> Open(const std::filesystem::path& file, OIIO::ImageSpec& layout)
{
    if (file.empty())
        throw SourceError("file: expected the name of a picture file, got none");
    if (!std::filesystem::is_regular_file(file))
        throw Unreadable(file, "there is no such file");
    OIIO::ImageSpec wishes;
    wishes.attribute("oiio:UnassociatedAlpha", 1);
    auto input = OIIO::ImageInput::create(file.string());
    if (!input)
        throw Unreadable(file, OIIO::geterror());
    if (!input->open(file.string(), layout, wishes))
        throw Unreadable(file, input->geterror());
    if (layout.deep || layout.depth > 1)
        throw Unreadable(file, "it is no flat picture");
    return input;
}

/// The channels of a picture that stand for red, green and blue: the first one for all when there are fewer.
std::vector<int> ColorChannels(const OIIO::ImageSpec& layout)
{
    std::vector<int> channels;
    for (int channel = 0; channel < layout.nchannels && channels.size() < 3; ++channel)
        if (channel != layout.alpha_channel)
            channels.push_back(channel);
    if (channels.empty())
        channels.push_back(0);
    while (channels.size() < 3)
        channels.push_back(channels.front());
    return channels;
}

struct Place {
    int before;  ///< the pixel before it, -1 for the last one of the row before
    float share; ///< of the pixel behind
};

/// Where a coordinate lies between the centres of `count` pixels.
Place PlaceOf(double coordinate, int count)
{
    const double position = (coordinate - std::floor(coordinate)) * count - 0.5;
    const double before = std::floor(position);
    return {static_cast<int>(before), static_cast<float>(position - before)};
}

TMCColorRGBA Mixed(TMCColorRGBA left, TMCColorRGBA right, float share)
{
    left *= 1 - share;
    right *= share;
    return left += right;
}

} // namespace

PictureSource::PictureSource(const Settings& settings)
{
    OIIO::ImageSpec layout;
    const auto input = Open(settings.fFile, layout);
    const size_t channelCount = static_cast<size_t>(layout.nchannels);
    std::vector<float> numbers(layout.image_pixels() * channelCount);
    if (!input->read_image(0, 0, 0, layout.nchannels, OIIO::TypeDesc::FLOAT, numbers.data()))
        throw Unreadable(settings.fFile, input->geterror());

    const bool encoded = settings.fEncoding == kEncodedSRGB
        || (settings.fEncoding == kEncodedAsUsual && !layout.format.is_floating_point());
    const std::vector<int> channels = ColorChannels(layout);
    fWidth = layout.width;
    fHeight = layout.height;
    fPixels.resize(layout.image_pixels());
    const float* pixel = numbers.data();
    for (TMCColorRGBA& color : fPixels) {
        for (uint32_t i = 0; i < 3; ++i)
            color[i] = encoded ? OIIO::sRGB_to_linear(pixel[channels[i]]) : pixel[channels[i]];
        color.fAlpha = layout.alpha_channel >= 0 ? pixel[layout.alpha_channel] : 1;
        pixel += channelCount;
    }
}

TMCColorRGBA PictureSource::ColorAt(const TVector2& uv) const
{
    const Place x = PlaceOf(uv[0], fWidth);
    const Place y = PlaceOf(-static_cast<double>(uv[1]), fHeight); // rows run down, V up
    const TMCColorRGBA above = Mixed(Pixel(x.before, y.before), Pixel(x.before + 1, y.before), x.share);
    const TMCColorRGBA below
        = Mixed(Pixel(x.before, y.before + 1), Pixel(x.before + 1, y.before + 1), x.share);
    return Mixed(above, below, y.share);
}

const TMCColorRGBA& PictureSource::Pixel(int x, int y) const
{
    const int column = (x + fWidth) % fWidth;
    const int row = (y + fHeight) % fHeight;
    return fPixels[static_cast<size_t>(row) * static_cast<size_t>(fWidth) + static_cast<size_t>(column)];
}

} // namespace fernwick
