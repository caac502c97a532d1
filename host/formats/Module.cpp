#include "host/formats/Formats.h"

namespace fernwick {

namespace {

class OwnFormats final : public Formats {
public:
    FilePicture ReadPictureFile(const PictureSettings& settings) const override
    {
        return fernwick::ReadPictureFile(settings);
    }
    std::unique_ptr<PictureEncoder> MakeEXREncoder(const EncodingJob& encoding) const override
    {
        return fernwick::MakeEXREncoder(encoding);
    }
    std::unique_ptr<PictureEncoder> MakeTIFFEncoder(const EncodingJob& encoding) const override
    {
        return fernwick::MakeTIFFEncoder(encoding);
    }
    void MakeTexture(const std::filesystem::path& picture, const std::filesystem::path& texture,
        const std::string& compression) const override
    {
        fernwick::MakeTexture(picture, texture, compression);
    }
};

constexpr OwnFormats kFormats;

} // namespace

} // namespace fernwick

extern "C" [[gnu::visibility("default")]] const fernwick::Formats* const fernwick_formats
    = &fernwick::kFormats;
