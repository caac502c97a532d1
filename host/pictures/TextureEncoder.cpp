#include "host/pictures/PictureEncoder.h"
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>

namespace fernwick {

namespace {

constexpr const char* kPictureName = "picture.exr";
constexpr const char* kTextureName = "texture.tx";

/// Gives a file the time that stands in the texture that is made of it, where the present would make equal pictures
/// unequal files: the start of 1970 in local time.
void ForgetTime(const std::filesystem::path& file)
{
    std::tm start = {};
    start.tm_year = 70;
    start.tm_mday = 1;
    start.tm_isdst = -1;
    const timespec time = {std::mktime(&start), 0};
    const timespec both[] = {time, time};
    if (utimensat(AT_FDCWD, file.c_str(), both, 0) != 0)
        throw PictureError("the time of a passing file can't be set");
}

/// Writes the picture into an EXR of tiles beside the file, and makes the texture of that.
class TextureEncoder final : public PictureEncoder {
public:
    TextureEncoder(const EncodingJob& encoding, const std::filesystem::path& path)
        : fFile(encoding.file), fCompression(encoding.layout.compression),
          fFolder(path), fLayout{.bits = encoding.layout.bits,
                             .straight = encoding.layout.straight,
                             .tiled = true,
                             .compression = "none"},
          fPicture(fFolder.Path() / kPictureName),
          fShape(PictureShape::Whole(
              encoding.shape.region.Width(), encoding.shape.region.Height(), encoding.shape.content)),
          fEncoder(MakeEXREncoder({fPicture, fShape, fLayout, encoding.numbers, encoding.threads}))
    { }

    void Write(int rows, const void* numbers) override { fEncoder->Write(rows, numbers); }

    void Finish() override
    {
        fEncoder->Finish();
        fPicture.Finish();
        ForgetTime(fFolder.Path() / kPictureName);
        const std::filesystem::path texture = fFolder.Path() / kTextureName;
        MakeTexture(fFolder.Path() / kPictureName, texture, fCompression);
        CopyFrom(texture);
    }

private:
    OutputFile& fFile;
    std::string fCompression;
    PassingFolder fFolder;
    PictureLayout fLayout;
    OutputFile fPicture;
    PictureShape fShape; // a texture has no place in a larger one
    std::unique_ptr<PictureEncoder> fEncoder;

    void CopyFrom(const std::filesystem::path& texture)
    {
        std::ifstream stream(texture, std::ios::binary);
        std::vector<char> bytes(size_t{1} << 20);
        while (stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size())) || stream.gcount() > 0)
            fFile.Write({bytes.data(), static_cast<size_t>(stream.gcount())});
        if (!stream.eof())
            throw PictureError("what was made of it can't be read");
    }
};

} // namespace

std::unique_ptr<PictureEncoder> MakeTextureEncoder(
    const EncodingJob& encoding, const std::filesystem::path& path)
{
    return std::make_unique<TextureEncoder>(encoding, path);
}

} // namespace fernwick
