#pragma once
#include "host/files/OutputFile.h"
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace fernwick {

/// A picture that can't be written. The text names the file.
class PictureError : public FileError {
public:
    using FileError::FileError;
};

/// What the numbers of a picture are. It decides how they become integers.
enum class PictureContent {
    kColor,  ///< linear light: red, green and blue are encoded as sRGB
    kValue,  ///< plain numbers: 0 to 1 becomes 0 to the greatest integer
    kNormal, ///< components of a unit vector: -1 to 1 becomes 0 to the greatest integer
};

/// The formats of picture files that are written.
enum class PictureFormat {
    kPNG,     ///< integers, the alpha straight
    kEXR,     ///< floats with added channels, the colours multiplied by the alpha
    kTIFF,    ///< integers as in a PNG, or floats as in an EXR
    kTexture, ///< an EXR in tiles with smaller copies (a MIP map), as renderers take it
};

/// How a picture is put into a file. See `RequireFit`.
struct PictureLayout {
    /// Of a channel. Of floats 16 (half) or 32, of integers 8 or 16, and 32 of a TIFF are floats; 0 for the usual: 32
    /// of an EXR or a texture, 8 of colours and 16 of all else in a PNG or TIFF.
    int bits = 0;
    bool straight = false;        ///< leaves the colours of floats as they are, not multiplied by the alpha
    bool tiled = false;           ///< in tiles of 64 by 64 pixels, not in rows; textures are anyway
    std::string compression = {}; ///< empty for "zip"
};

/// A part of a picture, in pixels from the upper left; the ends aren't in it.
struct PictureRegion {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool operator==(const PictureRegion&) const = default;
};

/// What a picture is apart from its pixels.
struct PictureShape {
    int width = 0; ///< of the whole picture, in pixels, above 0
    int height = 0;
    PictureRegion region = {}; ///< what there is of it, at least a pixel
    PictureContent content = PictureContent::kColor;
    std::vector<std::string> channels = {}; ///< names of those added to the four, such as "second.R"

    static PictureShape Whole(int width, int height, PictureContent content)
    {
        return {width, height, {0, 0, width, height}, content};
    }
};

/// The format of a file by the end of its name, PNG for a stream without one; none for what no picture is written as.
std::optional<PictureFormat> FormatOf(const std::filesystem::path& path);

/// Throws `PictureError` when no picture could be written to `path` for its name. To be asked before long work, and so
/// is `RequireWritable`.
void RequireSavable(const std::filesystem::path& path);

/// Throws `PictureError` when the layout isn't one of the format that the name tells. A `.png` has 8 or 16 bits and no
/// other choice. An `.exr` or `.tx` has 16 or 32 bits and any compression of `Compressions`, a `.tif` 8, 16 or 32 bits
/// and "zip" or "none". Only floats have colours that are multiplied by the alpha.
void RequireFit(const std::filesystem::path& path, const PictureLayout& layout);

/// All compressions: "none", "zip", and what an EXR has beside them.
std::span<const std::string_view> Compressions();

/// Whether a file of this name holds added channels.
bool HoldsLayers(const std::filesystem::path& path);

/// Whether a file of this name and layout holds floats, and so any number.
bool HoldsFloats(const std::filesystem::path& path, const PictureLayout& layout);

} // namespace fernwick
