#pragma once
#include "host/sources/GivenPicture.h"
#include "host/sources/SourceBase.h"
#include <filesystem>

namespace fernwick {

/// How the numbers in a picture file become colours. An alpha is never encoded.
enum PictureEncoding : int32_t {
    kEncodedAsUsual = 0, ///< linear in files of floats and where a file says so, else sRGB
    kEncodedSRGB = 1,
    kEncodedLinear = 2,
};

/// Whether the colours in a picture file are multiplied by its alpha, as they are encoded.
enum PictureAlpha : int32_t {
    kAlphaAsUsual = 0, ///< as the file says; else multiplied in EXR, TIFF and WebP
    kAlphaStraight = 1,
    kAlphaPremultiplied = 2,
};

struct PictureSettings {
    std::filesystem::path fFile;
    int32_t fEncoding = kEncodedAsUsual;
    int32_t fAlpha = kAlphaAsUsual;
};

/// A picture over the UV square, V up, repeated in both directions, with straight lines between the centres of
/// its pixels. Colours are linear light and the alpha is straight, 1 where the file has none; a grey picture is
/// grey.
class PictureSource final : public ColorSource {
public:
    using Settings = PictureSettings;

    /// Reads the file, as `ReadPictureFile` does. Throws `SourceError`.
    explicit PictureSource(const Settings& settings);
    /// Takes a picture in the place of the file.
    PictureSource(const Settings& settings, const GivenPicture& picture);

    TMCColorRGBA ColorAt(const TVector2& uv) const override;

    int Width() const { return fWidth; }
    int Height() const { return fHeight; }
    /// Row by row from the top; the source has none left.
    std::vector<TMCColorRGBA> TakePixels() { return std::move(fPixels); }

private:
    int fWidth = 0;
    int fHeight = 0;
    std::vector<TMCColorRGBA> fPixels; // row 0 at the top

    const TMCColorRGBA& Pixel(int x, int y) const; // wrapped around once
};

} // namespace fernwick
