#include "host/sources/PictureSource.h"
#include "host/sources/PictureDecoding.h"

namespace fernwick {

namespace {

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

/// Where the channels of a given picture lie.
PictureChannels ChannelsOf(const GivenPicture& picture)
{
    const bool isGrey = picture.fChannels < 3;
    const bool hasAlpha = picture.fChannels % 2 == 0;
    return {isGrey ? std::array{0, 0, 0} : std::array{0, 1, 2}, hasAlpha ? picture.fChannels - 1 : -1,
        picture.fChannels};
}

} // namespace

PictureSource::PictureSource(const Settings& settings, const GivenPicture& picture)
    : fWidth(picture.fWidth), fHeight(picture.fHeight)
{
    const bool isEncoded
        = settings.fEncoding == kEncodedAsUsual ? !picture.fIsOfFloats : settings.fEncoding == kEncodedSRGB;
    const PictureDecoding decoding = {ChannelsOf(picture), isEncoded, settings.fAlpha == kAlphaPremultiplied};
    fPixels.reserve(picture.fNumbers.size() / static_cast<size_t>(picture.fChannels));
    for (size_t i = 0; i < picture.fNumbers.size(); i += static_cast<size_t>(picture.fChannels))
        fPixels.push_back(decoding.ColorOf(&picture.fNumbers[i]));
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
