#pragma once
#include "frame/Colors.h"
#include "host/files/OutputFile.h"
#include <string>
#include <vector>

namespace fernwick {

/// A picture that can't be written. The text names the file.
class PictureError : public FileError {
public:
    using FileError::FileError;
};

/// What the numbers of a picture are. It decides how they become the integers of a PNG.
enum class PictureContent {
    kColor,  ///< linear light: red, green and blue are encoded as sRGB
    kValue,  ///< plain numbers: 0 to 1 becomes 0 to the greatest integer
    kNormal, ///< components of a unit vector: -1 to 1 becomes 0 to the greatest integer
};

/// How a picture is put into a file.
struct PictureLayout {
    int bits = 0;          ///< of a PNG's channel, 8 or 16; 0 for 8 of colours and 16 of all else
    bool straight = false; ///< leaves the colours of an EXR as they are
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

    /// Writes the picture with `WriteFile`, whole or not at all, into folders that are made. A name that ends in `.exr` gets the floats, unencoded,
    /// the colours multiplied by the alpha as is the custom of that format; its header tells which by the attribute
    /// `kAlphaAttribute`. `.png`, and a stream without an ending, gets integers, encoded by the content and clamped,
    /// with NaN as 0, and a straight alpha; what isn't a colour is marked as linear. Throws `FileError`.
    void Save(const std::filesystem::path& path, const PictureLayout& layout = {}) const;

    /// Throws `PictureError` when `Save` couldn't write `path` for its name. To be asked before long work, and so is
    /// `RequireWritable`.
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
    std::vector<unsigned char> IntegerFile(int bits) const;
    std::vector<unsigned char> FloatFile(bool straight) const;
};

} // namespace fernwick
