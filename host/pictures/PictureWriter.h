#pragma once
#include "frame/Colors.h"
#include "host/pictures/PictureFormat.h"
#include <memory>
#include <span>

namespace fernwick {

/// Writes a picture into a file from the top, band by band. Nothing of it is held in memory beyond a few rows, or a row
/// of tiles, and the bytes of the file don't tell how it was cut into bands.
///
/// An `.exr` gets the floats, unencoded, the colours multiplied by the alpha as is the custom of that format; its
/// header tells which by the attribute `kAlphaAttribute`, and a region becomes its data window. `.png`, and a stream
/// without an ending, gets integers, encoded by the content and clamped, with NaN as 0, and a straight alpha; what
/// isn't a colour is marked as linear, and a region is a picture by itself that tells its place. `.tif` has either, a
/// region as a picture by itself that tells its place. `.tx` is an EXR of tiles with smaller copies, of a region as if
/// it were all; OpenImageIO makes it of an EXR that lies beside the file meanwhile, and takes memory for one and a half
/// times the pixels as floats.
///
/// The file appears whole or not at all, as `OutputFile` has it, in folders that are made. A stream that gets anything
/// but a PNG waits for all of it, which is held in memory.
class PictureWriter {
public:
    /// @param threads  that encode at a time, 0 for one a processor; the bytes don't depend on it
    /// Throws `FileError`, and `PictureError` as `RequireFit` does.
    PictureWriter(const std::filesystem::path& path, const PictureShape& shape, const PictureLayout& layout,
        int threads = 0);
    /// A file that isn't finished vanishes.
    ~PictureWriter();

    /// Takes the next rows of the region, from the top. Throws `FileError`.
    /// @param pixels  whole rows, one behind the other
    /// @param layers  of each added channel its numbers, as many as there are pixels; only EXR files hold them
    void Write(std::span<const TMCColorRGBA> pixels, std::span<const std::vector<float>> layers = {});

    /// Puts the file in its place, when all rows were written. Throws `FileError`.
    void Finish();

private:
    struct State;
    std::unique_ptr<State> fState;
};

} // namespace fernwick
