#include "host/pictures/PictureWriter.h"
#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"
#include <OpenImageIO/color.h>
#include <OpenImageIO/imageio.h>
#include <bit>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <zlib.h>

using namespace fernwick;

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr int kWidth = 100;
constexpr int kHeight = 70;

/// What is written: smooth in two directions with some noise, in the range of integers.
std::vector<TMCColorRGBA> Pixels(const PictureRegion& region = {0, 0, kWidth, kHeight})
{
    std::vector<TMCColorRGBA> pixels;
    for (int y = region.top; y < region.bottom; ++y)
        for (int x = region.left; x < region.right; ++x) {
            const float noise = static_cast<float>((x * 7919 + y * 104729) % 97) / 970;
            pixels.push_back({static_cast<float>(x) / kWidth, static_cast<float>(y) / kHeight, 0.2f + noise,
                0.5f + static_cast<float>(x + y) / (4 * kWidth)});
        }
    return pixels;
}

/// Writes the pixels of a region in bands of as many rows.
void WriteBands(
    const fs::path& file, const PictureShape& shape, const PictureLayout& layout, int rows, int threads)
{
    const std::vector<TMCColorRGBA> pixels = Pixels(shape.region);
    const auto width = static_cast<size_t>(shape.region.Width());
    PictureWriter writer(file, shape, layout, threads);
    for (int top = 0; top < shape.region.Height(); top += rows) {
        const auto count = static_cast<size_t>(std::min(rows, shape.region.Height() - top)) * width;
        const auto band = std::span(pixels).subspan(static_cast<size_t>(top) * width, count);
        std::vector<std::vector<float>> layers(shape.channels.size());
        for (std::vector<float>& layer : layers)
            for (const TMCColorRGBA& color : band)
                layer.push_back(color.fRed + static_cast<float>(&layer - layers.data()));
        writer.Write(band, layers);
    }
    writer.Finish();
}

/// The numbers of a file as they are, and how it is laid out.
std::vector<float> Numbers(const fs::path& file, OIIO::ImageSpec& layout)
{
    const auto input = OIIO::ImageInput::open(file.string());
    EXPECT_TRUE(input) << file;
    layout = input->spec();
    std::vector<float> numbers(layout.image_pixels() * static_cast<size_t>(layout.nchannels));
    EXPECT_TRUE(input->read_image(0, 0, 0, layout.nchannels, OIIO::TypeDesc::FLOAT, numbers.data())) << file;
    return numbers;
}

class PictureWriterTest : public ShaderTest {
protected:
    const FreshFolder fFolder;
    const PictureShape fWhole = PictureShape::Whole(kWidth, kHeight, PictureContent::kColor);
};

TEST_F(PictureWriterTest, EveryLayoutIsReadBackAndTheSameInBandsOnAnyNumberOfThreads)
{
    using enum PictureContent;
    const struct {
        std::string ending;
        PictureLayout layout;
        PictureContent content;
        float apart;
    } rows[] = {
        {"png", {}, kColor, 5e-3f},
        {"png", {.bits = 16}, kColor, 3e-5f},
        {"png", {.bits = 8}, kValue, 2.1e-3f},
        {"png", {}, kValue, 1e-5f},
        {"exr", {}, kColor, 2e-6f},
        {"exr", {.straight = true}, kValue, 2e-6f},
        {"exr", {.bits = 16}, kColor, 2e-3f},
        {"exr", {.tiled = true, .compression = "piz"}, kColor, 2e-6f},
        {"exr", {.compression = "none"}, kColor, 2e-6f},
        {"exr", {.bits = 16, .compression = "dwaa"}, kColor, 0.1f},
        {"tif", {}, kColor, 5e-3f},
        {"TIFF", {.bits = 8, .tiled = true}, kColor, 5e-3f},
        {"tif", {.compression = "none"}, kValue, 1e-5f},
        {"tif", {.bits = 32}, kColor, 2e-6f},
        {"tif", {.bits = 32, .straight = true, .tiled = true}, kValue, 2e-6f},
        {"tx", {}, kColor, 2e-6f},
        {"tx", {.bits = 16, .compression = "zips"}, kColor, 2e-3f},
    };
    const std::vector<TMCColorRGBA> pixels = Pixels();
    for (const auto& [ending, layout, content, apart] : rows) {
        SCOPED_TRACE(ending + " " + std::to_string(layout.bits) + layout.compression);
        PictureShape shape = fWhole;
        shape.content = content;
        const fs::path file = fFolder / ("whole." + ending);
        WriteBands(file, shape, layout, kHeight, 1);
        const std::string bytes = FileText(file);
        for (const auto& [rowsOfBand, threads] : {std::pair(1, 2), {37, 3}}) {
            const fs::path again = fFolder / ("bands." + ending);
            WriteBands(again, shape, layout, rowsOfBand, threads);
            EXPECT_TRUE(FileText(again) == bytes) << rowsOfBand;
        }
        const Picture read = BakeText(R"("output": {"source": "picture", "file": ")" + file.string() + "\"}",
            {.width = kWidth, .height = kHeight});
        float most = 0;
        for (size_t i = 0; i < pixels.size(); ++i)
            for (uint32_t channel = 0; channel < 4; ++channel)
                most = std::max(most, std::abs((&read.At(0, 0))[i][channel] - pixels[i][channel]));
        EXPECT_LT(most, apart);
    }
    const auto texture = OIIO::ImageInput::open((fFolder / "whole.tx").string());
    EXPECT_TRUE(texture->seek_subimage(0, 6)); // down to a pixel
    EXPECT_EQ(texture->spec().width, 1);
}

TEST_F(PictureWriterTest, BytesOfColorsAreThoseOfTheFormula)
{
    constexpr float kOdd[] = {-1, -0.0f, 0, 1e-30f, 2, std::numeric_limits<float>::infinity(), NAN};
    std::vector<float> numbers(std::begin(kOdd), std::end(kOdd));
    constexpr uint32_t kStep = 1009; // of the floats' bits, which ascend as the numbers do
    for (auto bits = std::bit_cast<uint32_t>(0x1p-14f); bits <= std::bit_cast<uint32_t>(1.0f); bits += kStep)
        numbers.push_back(std::bit_cast<float>(bits));
    const int width = 1000;
    numbers.resize((numbers.size() / width + 1) * width);
    std::vector<TMCColorRGBA> pixels;
    for (const float number : numbers)
        pixels.push_back({number, number, number, 1});
    const int height = static_cast<int>(numbers.size()) / width;
    PictureWriter writer(
        fFolder / "a.png", PictureShape::Whole(width, height, PictureContent::kColor), {.bits = 8}, 2);
    writer.Write(pixels);
    writer.Finish();
    OIIO::ImageSpec layout;
    const std::vector<float> read = Numbers(fFolder / "a.png", layout);
    size_t wrong = 0;
    for (size_t i = 0; i < numbers.size(); ++i) {
        const float held = numbers[i] >= 0 ? std::min(numbers[i], 1.0f) : 0;
        const int byte = static_cast<int>(OIIO::linear_to_sRGB(held) * 255 + 0.5f);
        for (size_t channel = 0; channel < 3; ++channel)
            wrong += std::lround(read[i * 4 + channel] * 255) != byte;
    }
    EXPECT_EQ(wrong, 0u) << "of " << numbers.size() * 3;
}

TEST_F(PictureWriterTest, PartsJoinToTheWholeAndTellTheirPlace)
{
    PictureShape shape = fWhole;
    shape.channels = {"second.R", "coverage"};
    WriteBands(fFolder / "whole.exr", shape, {}, 64, 2);
    OIIO::ImageSpec whole;
    const std::vector<float> numbers = Numbers(fFolder / "whole.exr", whole);
    ASSERT_EQ(whole.nchannels, 6);
    for (const PictureRegion& region :
        {PictureRegion{0, 0, kWidth, 33}, {70, 33, kWidth, kHeight}, {99, 69, 100, 70}})
        for (const bool tiled : {false, true}) {
            shape.region = region;
            WriteBands(fFolder / "part.exr", shape, {.tiled = tiled}, 10, 2);
            OIIO::ImageSpec part;
            const std::vector<float> cut = Numbers(fFolder / "part.exr", part);
            EXPECT_EQ(part.x, region.left);
            EXPECT_EQ(part.y, region.top);
            EXPECT_EQ(part.full_width, kWidth);
            EXPECT_EQ(part.full_height, kHeight);
            EXPECT_EQ(part.tile_width, tiled ? 64 : 0);
            const auto row = static_cast<size_t>(region.Width()) * 6;
            ASSERT_EQ(cut.size(), row * static_cast<size_t>(region.Height()));
            for (int y = region.top; y < region.bottom; ++y) {
                const auto start = numbers.begin() + (y * kWidth + region.left) * 6;
                EXPECT_TRUE(std::equal(start, start + static_cast<ptrdiff_t>(row),
                    cut.begin() + static_cast<ptrdiff_t>(row) * (y - region.top)))
                    << y;
            }
        }
    shape.region = {70, 33, kWidth, kHeight};
    for (const std::string ending : {"png", "tif"}) {
        OIIO::ImageSpec part;
        WriteBands(fFolder / ("part." + ending), shape, {}, 10, 2);
        Numbers(fFolder / ("part." + ending), part);
        EXPECT_EQ(part.width, 30);
        EXPECT_EQ(part.height, 37);
        EXPECT_EQ(part.x, 70) << ending;
        EXPECT_EQ(part.y, 33) << ending;
    }
}

TEST_F(PictureWriterTest, APNGIsWellFormedOverManyStretches)
{
    constexpr int kLong = 2048;
    constexpr int kShort = 560; // more stretches than are compressed at a time
    const auto shape = PictureShape::Whole(kLong, kShort, PictureContent::kValue);
    const std::vector<TMCColorRGBA> row(kLong, {0.1f, 0.2f, 0.3f, 1});
    PictureWriter writer(fFolder / "a.png", shape, {}, 2);
    for (int y = 0; y < kShort; ++y)
        writer.Write(row);
    writer.Finish();
    const std::string bytes = FileText(fFolder / "a.png");
    const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto number = [&](size_t at) {
        return uint32_t{data[at]} << 24 | uint32_t{data[at + 1]} << 16 | uint32_t{data[at + 2]} << 8
            | data[at + 3];
    };
    std::string stream;
    std::string types;
    size_t at = 8;
    while (at < bytes.size()) {
        const size_t size = number(at);
        const std::string type = bytes.substr(at + 4, 4);
        EXPECT_EQ(crc32(0, data + at + 4, static_cast<uInt>(size + 4)), number(at + 8 + size)) << type;
        if (type == "IDAT")
            stream += bytes.substr(at + 8, size);
        if (!types.ends_with(type))
            types += type;
        at += size + 12;
    }
    EXPECT_EQ(types, "IHDRgAMAoFFstEXtIDATIEND");
    std::vector<unsigned char> filtered(kShort * (size_t{kLong} * 8 + 1));
    uLongf size = filtered.size();
    EXPECT_EQ(uncompress(filtered.data(), &size, reinterpret_cast<const unsigned char*>(stream.data()),
                  stream.size()),
        Z_OK); // with its sum
    EXPECT_EQ(size, filtered.size());
}

TEST_F(PictureWriterTest, AFullDiskOrAnEndInTheMiddleLeavesTheOldFile)
{
    constexpr rlim_t kMost = 128 << 10; // bytes
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit small = {kMost, limit.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    const auto shape = PictureShape::Whole(kWidth, kHeight * 4, PictureContent::kColor);
    std::mt19937 random;
    std::vector<TMCColorRGBA> pixels(kWidth * kHeight); // that can't be compressed
    for (TMCColorRGBA& color : pixels)
        for (uint32_t channel = 0; channel < 4; ++channel)
            color[channel] = static_cast<float>(random()) / 4294967296.0f;
    for (const std::string ending : {"png", "exr", "tif", "tx"}) {
        SCOPED_TRACE(ending);
        const fs::path file = fFolder / ("old." + ending);
        const PictureLayout layout = {.bits = ending == "png" ? 16 : 32};
        Store(file, "old");
        for (const bool isFull : {true, false}) {
            PictureWriter writer(file, shape, layout, 2);
            writer.Write(pixels);
            if (!isFull) {
                EXPECT_THAT(FilesIn(fFolder.Path()), testing::Contains(HasSubstr(".part")));
                RemoveUnfinishedFiles(); // as a signal's handler does
                EXPECT_THAT(FilesIn(fFolder.Path()), Not(testing::Contains(HasSubstr(".part"))));
                continue;
            }
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
            try {
                for (int i = 1; i < 4; ++i)
                    writer.Write(pixels);
                writer.Finish();
                ADD_FAILURE() << "a file beyond the limit";
            } catch (const FileError& error) {
                EXPECT_THAT(error.what(),
                    AllOf(testing::StartsWith(file.string()), HasSubstr(": can't be written: ")));
            }
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        }
        EXPECT_EQ(FileText(file).substr(0, 9), "old");
        EXPECT_THAT(FilesIn(fFolder.Path()), Not(testing::Contains(HasSubstr(".part"))));
    }
}

TEST_F(PictureWriterTest, APipeGetsWhatAFileWouldHold)
{
    for (const std::string ending : {"png", "exr", "tif"}) {
        const fs::path pipe = fFolder / ("pipe." + ending);
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        std::string got;
        std::thread reader([&] { got = FileText(pipe); });
        WriteBands(pipe, fWhole, {}, 20, 2);
        reader.join();
        WriteBands(fFolder / ("file." + ending), fWhole, {}, 20, 2);
        EXPECT_TRUE(got == FileText(fFolder / ("file." + ending))) << ending;
    }
}

TEST_F(PictureWriterTest, LayoutsThatAFormatDoesNotHaveAreRefusedWithThoseItHas)
{
    const auto expectRefused
        = [this](const char* name, const PictureLayout& layout, const std::string& reason) {
              try {
                  PictureWriter(fFolder / name, fWhole, layout);
                  ADD_FAILURE() << reason;
              } catch (const PictureError& error) {
                  EXPECT_EQ(error.what(), (fFolder / name).string() + ": " + reason);
              }
          };
    expectRefused("a.png", {.bits = 32}, "a .png has 8 or 16 bits a channel, not 32");
    expectRefused("a.exr", {.bits = 8}, "an .exr has 16 or 32 bits a channel, not 8");
    expectRefused("a.png", {.straight = true}, "a .png has a straight alpha anyway");
    expectRefused("a.tif", {.straight = true}, "a .tif has a straight alpha anyway, unless it has 32 bits");
    expectRefused("a.png", {.tiled = true}, "a .png has no tiles");
    expectRefused("a.png", {.compression = "zip"}, "a .png has no choice of compressions");
    expectRefused("a.tif", {.compression = "piz"}, "a .tif is compressed by zip or none, not \"piz\"");
    EXPECT_THAT(FilesIn(fFolder.Path()), testing::IsEmpty());
}

} // namespace
