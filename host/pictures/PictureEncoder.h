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
struct PictureEncoding {
    OutputFile& file;
    const PictureShape& shape;
    const PictureLayout& layout;
    PictureNumbers numbers;
    int threads; ///< that may work at a time, 0 for one a processor; the bytes don't depend on it
};

/// The encoder of PNG files, of bytes or 16 bit integers.
std::unique_ptr<PictureEncoder> MakePNGEncoder(const PictureEncoding& encoding);

/// The encoder of all other formats, which OpenImageIO writes.
std::unique_ptr<PictureEncoder> MakeImageEncoder(const PictureEncoding& encoding, PictureFormat format);

} // namespace fernwick
