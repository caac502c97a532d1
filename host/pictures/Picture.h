#pragma once
#include "frame/Colors.h"
#include "host/pictures/PictureFormat.h"
#include <span>
#include <string>
#include <vector>

namespace fernwick {

/// Red, green, blue and alpha in float, row 0 at the top. The alpha is straight: a colour isn't multiplied by it.
class Picture {
public:
    /// Transparent black.
    /// @param width, height  in pixels, above 0
    Picture(int width, int height, PictureContent content);

    /// Transparent black, the region of a larger picture. Its pixels are counted from the corner of the region.
    explicit Picture(const PictureShape& shape);

    int Width() const { return fShape.region.Width(); }
    int Height() const { return fShape.region.Height(); }
    PictureContent Content() const { return fShape.content; }

    TMCColorRGBA& At(int x, int y) { return fPixels[Index(x, y)]; }
    const TMCColorRGBA& At(int x, int y) const { return fPixels[Index(x, y)]; }

    /// All pixels, row by row from the top.
    std::span<const TMCColorRGBA> Pixels() const { return fPixels; }
    /// Of what was added, by name as in the shape, the numbers.
    const std::vector<std::string>& ChannelNames() const { return fShape.channels; }
    const std::vector<std::vector<float>>& Channels() const { return fChannels; }

    /// Adds a channel of floats, row by row from the top, under a name such as "second.R". Only EXR files hold it.
    void AddChannel(std::string name, std::vector<float> values);

    /// Lays this picture over `ground`, which has the same size: an alpha of 1 (or more) hides it, 0 (or less,
    /// or NaN) shows it.
    void LayOver(const Picture& ground);

    /// Writes the picture as `PictureWriter` does. Throws `FileError`.
    void Save(const std::filesystem::path& path, const PictureLayout& layout = {}, int threads = 0) const;

private:
    PictureShape fShape;
    std::vector<TMCColorRGBA> fPixels;
    std::vector<std::vector<float>> fChannels; // beside the four, as the shape names them

    size_t Index(int x, int y) const
    {
        return static_cast<size_t>(y) * static_cast<size_t>(Width()) + static_cast<size_t>(x);
    }
};

} // namespace fernwick
