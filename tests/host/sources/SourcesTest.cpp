#include "host/sources/Sources.h"
#include "host/documents/GraphDocument.h"
#include "tests/host/parameters/TableChecks.h"
#include "tests/support/ShaderTest.h"
#include "tests/support/Shell.h"
#include <OpenImageIO/imageio.h>
#include <filesystem>
#include <fstream>

using namespace fernwick;

namespace {

/// The source of a document such as `{"source": "value", "value": 2}`.
MCCountedPtr<IShellShader> Source(const std::string& members)
{
    return GraphDocument::Parse(
        R"({"shaders": {"it": {"source": )" + members + R"(}}, "output": "it"})", testing::TempDir())
        .Output()
        .fSource;
}

class SourcesTest : public ShaderTest {
protected:
    TMCColorRGBA ColorAt(IShellShader& source, float u, float v)
    {
        fIn.fUV = {u, v};
        TMCColorRGBA color{9, 9, 9, 9};
        EXPECT_EQ(source.ShadeColor(color, fFullArea = true, fIn), 1.0f);
        EXPECT_FALSE(fFullArea);
        return color;
    }
    float ValueAt(IShellShader& source, float u, float v)
    {
        fIn.fUV = {u, v};
        float value = 9;
        EXPECT_EQ(source.ShadeValue(value, fFullArea = true, fIn), 1.0f);
        EXPECT_FALSE(fFullArea);
        return value;
    }
};

TEST_F(SourcesTest, EachAnswersColourAndValueAndNamesItsKinds)
{
    const struct {
        const char* members;
        uint32_t kinds;
        float u, v;
        TMCColorRGBA color;
        float value;
    } rows[] = {
        {R"("color", "color": [1, 0, 0, 0.5])", 4, 0, 0, {1, 0, 0, 0.5f}, 0.3f},
        {R"("value", "value": 2.5)", 2, 0, 0, {2.5f, 2.5f, 2.5f, 1}, 2.5f},
        {R"("checker", "countU": 2, "countV": 4)", 4, 0.49f, 0.24f, {0, 0, 0, 1}, 0},
        {R"("checker", "countU": 2, "countV": 4)", 4, 0.51f, 0.24f, {1, 1, 1, 1}, 1},
        {R"("checker", "countU": 2, "countV": 4)", 4, 0.51f, 0.26f, {0, 0, 0, 1}, 0},
        {R"("checker", "countU": 2, "countV": 4)", 4, -0.1f, 0.1f, {1, 1, 1, 1}, 1},
        {R"("checker", "odd": [1, 0, 0])", 4, kNaN, kInfinity, {0, 0, 0, 1}, 0},
        {R"("ramp")", 6, 0.25f, 0.75f, {0.25f, 0.25f, 0.25f, 1}, 0.25f},
        {R"("ramp", "along": "v", "from": 1, "to": 3)", 6, 0.25f, 1.5f, {4, 4, 4, 1}, 4},
        {R"("surface", "color": [1, 0, 0, 0.5])", 16, 0, 0, {1, 0, 0, 0.5f}, 0.3f},
        {R"("gradient")", 4, 0.5f, 0, {0.5f, 0.5f, 0.5f, 1}, 0.5f},
        {R"("gradient", "along": 1, "colors": [[1, 0, 0], [0, 1, 0], [0, 0, 1, 0]])", 4, 0, 0.75f,
            {0, 0.5f, 0.5f, 0.5f}, 0.35f},
        {R"("gradient", "colors": [[1, 0, 0], [0, 1, 0], [0, 0, 1, 0]])", 4, 7, 0, {0, 0, 1, 0}, 0.11f},
        {R"("gradient", "colors": [[1, 0, 0], [0, 1, 0], [0, 0, 1, 0]])", 4, -7, 0, {1, 0, 0, 1}, 0.3f},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.members);
        const auto source = Source(row.members);
        EXPECT_EQ(source->GetOutputKinds(), row.kinds);
        EXPECT_THAT(ColorAt(*source, row.u, row.v),
            IsColor(row.color.fRed, row.color.fGreen, row.color.fBlue, row.color.fAlpha));
        EXPECT_FLOAT_EQ(ValueAt(*source, row.u, row.v), row.value);

        ShadingOut surface;
        ShadingFlags flags;
        EXPECT_EQ(source->ShadeSurface(surface, fIn), 1);
        EXPECT_EQ(surface.fColor.fAlpha, row.color.fAlpha);
        source->GetShadingFlags(flags);
        EXPECT_EQ(flags.fNeeds, kNeedsUV);
        EXPECT_EQ(flags.fDependencyBits, 0);
    }
}

TEST_F(SourcesTest, TablesFitTheirRecords)
{
    for (const SourceKind& kind : AllSources()) {
        ExpectCovers(kind.fTable);
        ExpectDescribes(kind.fTable, kind.fDefaults);
    }
}

/// A picture file that a test writes byte by byte.
class PictureFile {
public:
    PictureFile(const std::string& name, const std::string& bytes)
        : fPath(std::filesystem::path(testing::TempDir()) / name)
    {
        std::ofstream(fPath, std::ios::binary) << bytes;
    }
    ~PictureFile() { std::filesystem::remove(fPath); }

private:
    std::filesystem::path fPath;
};

TEST_F(SourcesTest, APictureIsReadBetweenItsPixelsWithVUpAndRepeats)
{
    const PictureFile file("fernwick.ppm", "P3 2 2 255  255 0 0  0 255 0  0 0 255  255 255 255\n");
    const auto picture = Source(R"("picture", "file": "fernwick.ppm")");
    EXPECT_EQ(picture->GetOutputKinds(), 4u);
    const struct {
        float u, v;
        TMCColorRGBA color;
    } rows[] = {
        {0.25f, 0.75f, {1, 0, 0, 1}}, // the first pixel of the file is at the top left
        {0.75f, 0.25f, {1, 1, 1, 1}}, {0.25f, 0.25f, {0, 0, 1, 1}},
        {0.5f, 0.75f, {0.5f, 0.5f, 0, 1}},                                 // between two centres
        {0.25f, 0.5f, {0.5f, 0, 0.5f, 1}}, {0, 0.75f, {0.5f, 0.5f, 0, 1}}, // across the seam
        {1, 1, {0.5f, 0.5f, 0.5f, 1}}, {-2.75f, 3.75f, {1, 0, 0, 1}},
        {kNaN, kInfinity, {0.5f, 0.5f, 0.5f, 1}}, // as at 0, 0
    };
    for (const auto& row : rows)
        EXPECT_THAT(ColorAt(*picture, row.u, row.v),
            IsColor(row.color.fRed, row.color.fGreen, row.color.fBlue, row.color.fAlpha))
            << row.u << ' ' << row.v;
}

TEST_F(SourcesTest, PicturesAreDecodedByTheirEncodingAndKeepAStraightAlpha)
{
    std::string pixel = {2, 6, 4, static_cast<char>(128)}; // blue, green, red, alpha
    std::string head(18, 0);
    head[2] = 2; // true colour
    head[12] = head[14] = 1;
    head[16] = 32;
    head[17] = 8; // bits of alpha
    pixel[0] = static_cast<char>(188);
    const PictureFile colored("fernwick.tga", head + pixel);
    const PictureFile grey("fernwick.pgm", "P2 1 1 255 188\n");
    float number = 0.25f;
    std::string bytes(reinterpret_cast<const char*>(&number), sizeof number);
    const PictureFile floats("fernwick.pfm", "Pf\n1 1\n-1.0\n" + bytes);
    const float linear = 0.5028865f; // of 188 / 255 in sRGB

    const auto colorOf = [this](const char* members) {
        return ColorAt(*Source(R"("picture", "file": )" + std::string(members)), 0.5f, 0.5f);
    };
    const TMCColorRGBA color = colorOf(R"("fernwick.tga")");
    EXPECT_NEAR(color.fBlue, linear, 1e-6);
    EXPECT_NEAR(color.fGreen, 6 / 255.0 / 12.92, 1e-6);
    EXPECT_NEAR(color.fAlpha, 128 / 255.0, 1e-6);
    EXPECT_NEAR(colorOf(R"("fernwick.pgm")").fGreen, linear, 1e-6);
    EXPECT_NEAR(colorOf(R"("fernwick.pgm", "encoding": "linear")").fBlue, 188 / 255.0, 1e-6);
    EXPECT_EQ(colorOf(R"("fernwick.pfm")").fRed, 0.25f);
    EXPECT_NEAR(colorOf(R"("fernwick.pfm", "encoding": "sRGB")").fRed, 0.0508761, 1e-6);

    const PictureFile broken("fernwick.png", "no picture");
    EXPECT_THROW(colorOf(R"("fernwick.png")"), GraphError);
}

/// A file of 16 by 16 equal pixels as OpenImageIO writes it.
std::string FileOf(const std::string& format, const std::vector<float>& pixel)
{
    constexpr int kSide = 16;
    std::vector<float> pixels;
    for (int i = 0; i < kSide * kSide; ++i)
        pixels.insert(pixels.end(), pixel.begin(), pixel.end());
    const auto path = std::filesystem::path(testing::TempDir()) / ("fernwick_written." + format);
    const OIIO::ImageSpec layout(kSide, kSide, static_cast<int>(pixel.size()), OIIO::TypeDesc::UINT8);
    const auto output = OIIO::ImageOutput::create(path.string());
    EXPECT_TRUE(output && output->open(path.string(), layout)
        && output->write_image(OIIO::TypeDesc::FLOAT, pixels.data()) && output->close());
    const std::string bytes = FileText(path);
    std::filesystem::remove(path);
    return bytes;
}

TEST_F(SourcesTest, ADecoderIsntTrusted)
{
    const auto colorOf = [this](const std::string& name) {
        return ColorAt(*Source(R"("picture", "encoding": "linear", "file": ")" + name + '"'), 0.5f, 0.5f);
    };
    const auto errorOf = [&](const std::string& name) -> std::string {
        try {
            colorOf(name);
        } catch (const GraphError& error) {
            return error.what();
        }
        return "read";
    };
    const PictureFile gif(
        "fernwick.gif", FileOf("gif", {1, 0, 0.2f, 1})); // its alpha is told to lie behind the last
    EXPECT_TRUE(colorOf("fernwick.gif").Equals({1, 0, 0.2f, 1}, 1e-6f));
    const PictureFile pair("fernwick.tif", FileOf("tif", {0.4f, 0.6f})); // a channel too few for a colour
    EXPECT_TRUE(colorOf("fernwick.tif").Equals({0.4f, 0.4f, 0.4f, 1}, 1e-6f));
    const PictureFile multiplied("fernwick_multiplied.tif", FileOf("tif", {0.4f, 0.2f, 0.2f, 0.8f}));
    EXPECT_TRUE(colorOf("fernwick_multiplied.tif").Equals({0.5f, 0.25f, 0.25f, 0.8f}, 1e-6f));

    for (const char* const format : {"jpg", "png", "tif", "bmp", "gif", "exr"}) {
        const std::string bytes = FileOf(format, {0.3f, 0.5f, 0.7f});
        const std::string name = std::string("fernwick_cut.") + format;
        const PictureFile cut(name, bytes.substr(0, bytes.size() - 24)); // some of the pixels too
        EXPECT_THAT(errorOf(name), testing::HasSubstr(name + " can't be read: ")) << format;
    }

    testing::internal::CaptureStderr();
    std::string bytes = FileOf("png", {0.3f, 0.5f, 0.7f});
    const PictureFile shortened("fernwick_cut.png", bytes.substr(0, bytes.size() - 1));
    EXPECT_THAT(errorOf("fernwick_cut.png"), testing::EndsWith("it is cut off"));
    bytes[bytes.find("IHDR") + 7] ^= 1; // of the width
    const PictureFile damaged("fernwick_damaged.png", bytes);
    EXPECT_THAT(errorOf("fernwick_damaged.png"), testing::EndsWith("it is damaged"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "a decoder prints of its own";

    using namespace std::string_literals;
    const PictureFile huge("fernwick_huge.png",
        "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\xea\x60\0\0\xea\x60\x08\x06\0\0\0\x80\xd2\x75\x42\0\0\0\0IDAT\x35"
        "\xaf\x06\x1e"
        "\0\0\0\0IEND\xae\x42\x60\x82"s);
    EXPECT_THAT(errorOf("fernwick_huge.png"),
        testing::HasSubstr("it is said to have 60000 x 60000 pixels; the most are 16384 x 16384"));
    const PictureFile endless("fernwick_endless.psd", // 4 GB of colours of an index, in 38 bytes
        "8BPS\0\1\0\0\0\0\0\0\0\3\0\0\0\2\0\0\0\3\0\x08\0\3\xfb\xff\1\0\0\0\0\0\0\0\0\0"s);
    EXPECT_THAT(errorOf("fernwick_endless.psd"), testing::EndsWith("it is cut off"));
}

} // namespace
