#pragma once
#include "frame/Colors.h"
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace fernwick {

/// A picture that can't be written. The text names the file.
class PictureError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What the numbers of a picture are. It decides how they become the bytes of an 8-bit file.
enum class PictureContent {
    kColor,  ///< linear light: red, green and blue are encoded as sRGB
    kValue,  ///< plain numbers: 0 to 1 becomes 0 to 255
    kNormal, ///< components of a unit vector: -1 to 1 becomes 0 to 255
};

/// Red, green, blue and alpha in float, row 0 at the top. The alpha is straight: a colour isn't multiplied by it.
class Picture {
public:
    /// Transparent black.
    /// @param width, height  in pixels, above 0
    Picture(int width, int height, PictureContent content);

    int Width() const { return fWidth; }
    int Height() const { return fHeight; }
    PictureContent Content() const { return fContent; }

    TMCColorRGBA& At(int x, int y) { return fPixels[Index(x, y)]; }
    const TMCColorRGBA& At(int x, int y) const { return fPixels[Index(x, y)]; }

    /// Adds a channel of floats, row by row from the top, under a name such as "second.R". Only EXR files hold it.
    void AddChannel(std::string name, std::vector<float> values);

    /// Lays this picture over `ground`, which has the same size: an alpha of 1 (or more) hides it, 0 (or less,
    /// or NaN) shows it.
    void LayOver(const Picture& ground);

    /// Writes the picture. A name that ends in `.exr` gets the floats as they are, unencoded; `.png` gets 8 bits
    /// a channel, encoded by the content and clamped, with NaN as 0. Both hold the straight alpha.
    ///
    /// The file appears whole or not at all: it is written under a name of its own beside `path` and renamed.
    /// Missing folders are made. Throws `PictureError`.
    void Save(const std::filesystem::path& path) const;

    /// Throws `PictureError` when `Save` couldn't write `path` for its name. To be asked before long work.
    static void RequireSavable(const std::filesystem::path& path);

    /// Whether a file of this name holds the added channels.
    static bool HoldsLayers(const std::filesystem::path& path);

private:
    int fWidth;
    int fHeight;
    PictureContent fContent;
    std::vector<TMCColorRGBA> fPixels;
    std::vector<std::pair<std::string, std::vector<float>>> fChannels; // beside the four

    size_t Index(int x, int y) const
    {
        return static_cast<size_t>(y) * static_cast<size_t>(fWidth) + static_cast<size_t>(x);
    }
    std::vector<uint8_t> Bytes() const;
    std::vector<float> Floats() const;
    void Write(const std::filesystem::path& path, const std::string& format) const;
};

} // namespace fernwick
