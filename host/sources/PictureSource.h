#pragma once
#include "host/sources/SourceBase.h"
#include <filesystem>

namespace fernwick {

/// How the numbers in a picture file become colours. An alpha is never encoded.
enum PictureEncoding : int32_t {
    kEncodedAsUsual = 0, ///< sRGB in files of integers, linear in files of floats
    kEncodedSRGB = 1,
    kEncodedLinear = 2,
};

struct PictureSettings {
    std::filesystem::path fFile;
    int32_t fEncoding = kEncodedAsUsual;
};

/// A picture over the UV square, V up, repeated in both directions, with straight lines between the centres of
/// its pixels. Colours are linear light and the alpha is straight, 1 where the file has none; a grey picture is
/// grey.
class PictureSource final : public ColorSource {
public:
    using Settings = PictureSettings;

    /// Reads the file, in any format that OpenImageIO knows. Throws `SourceError`.
    explicit PictureSource(const Settings& settings);

    TMCColorRGBA ColorAt(const TVector2& uv) const override;

private:
    int fWidth = 0;
    int fHeight = 0;
    std::vector<TMCColorRGBA> fPixels; // row 0 at the top

    const TMCColorRGBA& Pixel(int x, int y) const; // wrapped around once
};

} // namespace fernwick
