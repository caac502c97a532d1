#pragma once
#include "host/files/OutputFile.h"
#include "host/pictures/PictureFormat.h"
#include <memory>

namespace fernwick {

/// How the numbers of a file lie in memory, in the order of the processor.
enum class PictureNumbers { kByte, kUint16, kFloat };

/// Makes a file of one format out of rows of numbers that are as the file holds them.
class PictureEncoder {
public:
    virtual ~PictureEncoder() = default;

    /// Takes the next rows from the top.
    /// @param numbers  as many a pixel as the picture has channels, row by row
    virtual void Write(int rows, const void* numbers) = 0;

    /// Writes what is left. To be called once, behind the last row.
    virtual void Finish() = 0;
};

/// What the encoders are made from.
struct EncodingJob {
    OutputFile& file;
    const PictureShape& shape;
    const PictureLayout& layout;
    PictureNumbers numbers;
    int threads; ///< that may work at a time, 0 for one a processor; the bytes don't depend on it
};

/// The encoder of PNG files, of bytes or 16 bit integers.
std::unique_ptr<PictureEncoder> MakePNGEncoder(const EncodingJob& encoding);

// What OpenImageIO has a part in is done by `host/formats`.

/// The encoder of EXR files, of floats.
std::unique_ptr<PictureEncoder> MakeEXREncoder(const EncodingJob& encoding);

/// The encoder of TIFF files.
std::unique_ptr<PictureEncoder> MakeTIFFEncoder(const EncodingJob& encoding);

/// Makes a mip-mapped texture out of an EXR of tiles, whose time of change goes into it. Throws `PictureError`.
/// @param compression  as EXR names it; empty for the usual one
void MakeTexture(const std::filesystem::path& picture, const std::filesystem::path& texture,
    const std::string& compression);

/// The encoder of textures, of floats.
/// @param path  of the file; a folder beside it holds the picture until all of it is there
std::unique_ptr<PictureEncoder> MakeTextureEncoder(
    const EncodingJob& encoding, const std::filesystem::path& path);

} // namespace fernwick
