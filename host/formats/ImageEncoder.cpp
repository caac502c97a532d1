#include "host/files/PictureAttributes.h"
#include "host/formats/OutputProxy.h"
#include "host/pictures/PictureEncoder.h"
#include "host/threads/Parallel.h"
#include <OpenImageIO/imageio.h>
#include <algorithm>
#include <cstring>

namespace fernwick {

namespace {

/// The present time would make equal pictures unequal files.
constexpr const char* kNoTime = "1970:01:01 00:00:00";
constexpr int kTileSide = 64;    // pixels
constexpr int kRowsOfStrip = 32; // of a TIFF

OIIO::TypeDesc TypeOf(PictureNumbers numbers)
{
    switch (numbers) {
    case PictureNumbers::kByte:
        return OIIO::TypeDesc::UINT8;
    case PictureNumbers::kUint16:
        return OIIO::TypeDesc::UINT16;
    case PictureNumbers::kFloat:
        break;
    }
    return OIIO::TypeDesc::FLOAT;
}

/// What the encoders of all formats need to know of the picture.
OIIO::ImageSpec HeaderOf(const EncodingJob& encoding, OIIO::TypeDesc type)
{
    const PictureShape& shape = encoding.shape;
    OIIO::ImageSpec header(shape.region.Width(), shape.region.Height(), 4, type);
    header.x = shape.region.left;
    header.y = shape.region.top;
    header.full_width = shape.width;
    header.full_height = shape.height;
    if (encoding.layout.tiled)
        header.tile_width = header.tile_height = kTileSide;
    header.attribute("DateTime", kNoTime);
    header.attribute(
        "compression", encoding.layout.compression.empty() ? "zip" : encoding.layout.compression);
    return header;
}

OIIO::ImageSpec EXRHeaderOf(const EncodingJob& encoding)
{
    OIIO::ImageSpec header
        = HeaderOf(encoding, encoding.layout.bits == 16 ? OIIO::TypeDesc::HALF : OIIO::TypeDesc::FLOAT);
    for (const std::string& name : encoding.shape.channels) {
        ++header.nchannels;
        header.channelnames.push_back(name);
    }
    header.attribute(kAlphaAttribute, encoding.layout.straight ? kStraightAlpha : kPremultipliedAlpha);
    return header;
}

OIIO::ImageSpec TIFFHeaderOf(const EncodingJob& encoding)
{
    constexpr OIIO::imagesize_t kMostBytes = 4'000'000'000; // that surely fit behind offsets of 32 bits
    OIIO::ImageSpec header = HeaderOf(encoding, TypeOf(encoding.numbers));
    const bool isFloat = encoding.numbers == PictureNumbers::kFloat;
    if (!isFloat || encoding.layout.straight)
        header.attribute("oiio:UnassociatedAlpha", 1);
    if (!isFloat && encoding.shape.content != PictureContent::kColor)
        header.attribute("ImageDescription", kLinearDescription);
    if (header.image_bytes() > kMostBytes)
        header.attribute("tiff:bigtiff", 1);
    header.attribute("tiff:RowsPerStrip", kRowsOfStrip);
    return header;
}

/// Writes with an encoder of OpenImageIO. The rows are handed on in the heights that the file is made of, so that the
/// bands don't show in it.
class ImageEncoder final : public PictureEncoder {
public:
    /// @param rows  that the file is made of
    ImageEncoder(const EncodingJob& encoding, const char* format, const OIIO::ImageSpec& header, int rows)
        : fProxy(encoding.file), fHeader(header), fType(TypeOf(encoding.numbers)),
          fOutput(OIIO::ImageOutput::create(format, &fProxy)),
          fRows(header.tile_height > 0 ? header.tile_height : rows),
          fPixelSize(static_cast<size_t>(header.nchannels) * fType.size()),
          fRowSize(static_cast<size_t>(header.width) * fPixelSize),
          fTilesArePadded(std::string_view(format) == "tiff"), fY(header.y)
    {
        if (!fOutput)
            throw PictureError(OIIO::geterror());
        // Of the whole process, as the library has it.
        OIIO::attribute("exr_threads", ThreadCount(encoding.threads));
        Require(fOutput->open(std::string(".") + format, fHeader));
    }

    void Write(int rows, const void* numbers) override
    {
        const auto* const bytes = static_cast<const unsigned char*>(numbers);
        const size_t unit = static_cast<size_t>(fRows) * fRowSize;
        size_t done = 0;
        const size_t size = static_cast<size_t>(rows) * fRowSize;
        if (!fWaiting.empty()) {
            done = std::min(unit - fWaiting.size(), size);
            fWaiting.insert(fWaiting.end(), bytes, bytes + done);
            if (fWaiting.size() == unit) {
                WriteRows(fRows, fWaiting.data());
                fWaiting.clear();
            }
        }
        if (const size_t whole = (size - done) / unit; whole > 0) {
            WriteRows(static_cast<int>(whole) * fRows, bytes + done);
            done += whole * unit;
        }
        fWaiting.insert(fWaiting.end(), bytes + done, bytes + size);
    }

    void Finish() override
    {
        if (!fWaiting.empty())
            WriteRows(static_cast<int>(fWaiting.size() / fRowSize), fWaiting.data());
        Require(fOutput->close());
        fProxy.Finish();
    }

private:
    OutputProxy fProxy;
    OIIO::ImageSpec fHeader;
    OIIO::TypeDesc fType;
    std::unique_ptr<OIIO::ImageOutput> fOutput;
    int fRows;
    size_t fPixelSize; // bytes
    size_t fRowSize;
    bool fTilesArePadded; // those at the edges, in the file
    int fY;
    std::vector<unsigned char> fWaiting;
    std::vector<unsigned char> fTile;

    void Require(bool done) const
    {
        fProxy.Require();
        if (!done)
            throw PictureError(fOutput->geterror());
    }

    void WriteRows(int rows, const unsigned char* numbers)
    {
        const int end = fY + rows;
        if (fHeader.tile_height == 0)
            Require(fOutput->write_scanlines(fY, end, 0, fType, numbers));
        else if (fTilesArePadded)
            for (int y = fY; y < end; y += kTileSide)
                WriteTiles(std::min(kTileSide, end - y), y, numbers + static_cast<size_t>(y - fY) * fRowSize);
        else
            Require(
                fOutput->write_tiles(fHeader.x, fHeader.x + fHeader.width, fY, end, 0, 1, fType, numbers));
        fY = end;
    }

    /// Gives each tile whole, with zeros beyond the picture, where the encoder would leave what lies in memory there.
    void WriteTiles(int rows, int y, const unsigned char* numbers)
    {
        const size_t rowOfTile = kTileSide * fPixelSize;
        for (int left = 0; left < fHeader.width; left += kTileSide) {
            fTile.assign(kTileSide * rowOfTile, 0);
            const size_t size = static_cast<size_t>(std::min(kTileSide, fHeader.width - left)) * fPixelSize;
            for (int row = 0; row < rows; ++row)
                std::memcpy(&fTile[static_cast<size_t>(row) * rowOfTile],
                    numbers + static_cast<size_t>(row) * fRowSize + static_cast<size_t>(left) * fPixelSize,
                    size);
            Require(fOutput->write_tile(fHeader.x + left, y, 0, fType, fTile.data()));
        }
    }
};

} // namespace

std::unique_ptr<PictureEncoder> MakeEXREncoder(const EncodingJob& encoding)
{
    return std::make_unique<ImageEncoder>(encoding, "openexr", EXRHeaderOf(encoding), 1);
}

std::unique_ptr<PictureEncoder> MakeTIFFEncoder(const EncodingJob& encoding)
{
    return std::make_unique<ImageEncoder>(encoding, "tiff", TIFFHeaderOf(encoding), kRowsOfStrip);
}

} // namespace fernwick
