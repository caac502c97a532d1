#include "host/pictures/PictureWriter.h"
#include "host/pictures/EncodeIntegers.h"
#include "host/pictures/Picture.h"
#include "host/pictures/PictureEncoder.h"
#include "host/threads/Parallel.h"
#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace fernwick {

namespace {

constexpr size_t kColors = 4; // red, green, blue and alpha
constexpr size_t kBytesAtATime = 8 << 20;

/// @param first  the place of the first pixel in the layers
void PutFloats(std::span<const TMCColorRGBA> pixels, std::span<const std::vector<float>> layers, size_t first,
    bool straight, float* numbers)
{
    for (size_t i = 0; i < pixels.size(); ++i) {
        const TMCColorRGBA& color = pixels[i];
        const float factor = straight ? 1 : color.fAlpha;
        for (const float channel : {color.fRed, color.fGreen, color.fBlue})
            *numbers++ = factor != 0 ? channel * factor : 0; // what is hidden may be anything
        *numbers++ = color.fAlpha;
        for (const std::vector<float>& layer : layers)
            *numbers++ = layer[first + i];
    }
}

PictureNumbers NumbersOf(
    const std::filesystem::path& path, PictureContent content, const PictureLayout& layout)
{
    if (HoldsFloats(path, layout))
        return PictureNumbers::kFloat;
    const bool isCoarse = layout.bits == 8 || (layout.bits == 0 && content == PictureContent::kColor);
    return isCoarse ? PictureNumbers::kByte : PictureNumbers::kUint16;
}

size_t SizeOf(PictureNumbers numbers)
{
    switch (numbers) {
    case PictureNumbers::kByte:
        return sizeof(uint8_t);
    case PictureNumbers::kUint16:
        return sizeof(uint16_t);
    case PictureNumbers::kFloat:
        break;
    }
    return sizeof(float);
}

OutputFile Open(const std::filesystem::path& path, const PictureLayout& layout)
{
    RequireFit(path, layout);
    MakeFolderOf(path);
    return OutputFile(path);
}

std::unique_ptr<PictureEncoder> MakeEncoder(const EncodingJob& encoding, const std::filesystem::path& path)
{
    switch (*FormatOf(path)) {
    case PictureFormat::kPNG:
        return MakePNGEncoder(encoding);
    case PictureFormat::kEXR:
        return MakeEXREncoder(encoding);
    case PictureFormat::kTIFF:
        return MakeTIFFEncoder(encoding);
    case PictureFormat::kTexture:
        break;
    }
    return MakeTextureEncoder(encoding, path);
}

} // namespace

struct PictureWriter::State {
    std::filesystem::path path;
    PictureShape shape;
    PictureLayout layout;
    int threads;
    OutputFile file;
    PictureNumbers numbers;
    std::unique_ptr<PictureEncoder> encoder = {};
    std::vector<std::byte> converted = {};

    size_t Width() const { return static_cast<size_t>(shape.region.Width()); }
    size_t RowSize() const { return Width() * (kColors + shape.channels.size()) * SizeOf(numbers); }

    void ConvertRow(std::span<const TMCColorRGBA> pixels, std::span<const std::vector<float>> layers,
        size_t first, std::byte* row) const
    {
        switch (numbers) {
        case PictureNumbers::kByte:
            return EncodeBytes(pixels, shape.content, reinterpret_cast<uint8_t*>(row));
        case PictureNumbers::kUint16:
            return EncodeUint16s(pixels, shape.content, reinterpret_cast<uint16_t*>(row));
        case PictureNumbers::kFloat:
            return PutFloats(pixels, layers, first, layout.straight, reinterpret_cast<float*>(row));
        }
    }

    /// Runs what an encoder does, whose complaints don't know the file.
    template <class Do> void Encode(const Do& act) const
    {
        try {
            act();
        } catch (const PictureError& error) {
            throw PictureError(fmt::format("{}: can't be written: {}", path.string(), error.what()));
        }
    }
};

PictureWriter::PictureWriter(
    const std::filesystem::path& path, const PictureShape& shape, const PictureLayout& layout, int threads)
    : fState(
        new State{path, shape, layout, threads, Open(path, layout), NumbersOf(path, shape.content, layout)})
{
    if (!HoldsLayers(path))
        fState->shape.channels.clear();
    const EncodingJob encoding = {fState->file, fState->shape, fState->layout, fState->numbers, threads};
    fState->Encode([&] { fState->encoder = MakeEncoder(encoding, path); });
}

PictureWriter::~PictureWriter() = default;

void PictureWriter::Write(std::span<const TMCColorRGBA> pixels, std::span<const std::vector<float>> layers)
{
    State& state = *fState;
    const size_t width = state.Width();
    const size_t rowSize = state.RowSize();
    const size_t rowsAtATime = std::max<size_t>(kBytesAtATime / rowSize, 1);
    const size_t end = pixels.size() / width;
    for (size_t top = 0; top < end; top += rowsAtATime) {
        const size_t rows = std::min(rowsAtATime, end - top);
        state.converted.resize(rows * rowSize);
        RunParallel(static_cast<int>(rows), state.threads, [&](int y) {
            const auto row = static_cast<size_t>(y);
            const size_t first = (top + row) * width;
            state.ConvertRow(pixels.subspan(first, width), layers.first(state.shape.channels.size()), first,
                &state.converted[row * rowSize]);
        });
        state.Encode([&] { state.encoder->Write(static_cast<int>(rows), state.converted.data()); });
    }
}

void PictureWriter::Finish()
{
    fState->Encode([this] { fState->encoder->Finish(); });
    fState->file.Finish();
}

void Picture::Save(const std::filesystem::path& path, const PictureLayout& layout, int threads) const
{
    PictureWriter writer(path, fShape, layout, threads);
    writer.Write(fPixels, fChannels);
    writer.Finish();
}

} // namespace fernwick
