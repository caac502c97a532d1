#pragma once
#include "host/pictures/PictureEncoder.h"
#include "host/sources/PictureFile.h"

namespace fernwick {

/// What this room does, for a program that loads it when it is first needed: OpenImageIO brings hundreds of libraries
/// along, which take longer to load than most pictures to shade. Whoever needs it in any case links it, and calls the
/// functions of these names.
class Formats {
public:
    virtual FilePicture ReadPictureFile(const PictureSettings& settings) const = 0;
    virtual std::unique_ptr<PictureEncoder> MakeEXREncoder(const EncodingJob& encoding) const = 0;
    virtual std::unique_ptr<PictureEncoder> MakeTIFFEncoder(const EncodingJob& encoding) const = 0;
    virtual void MakeTexture(const std::filesystem::path& picture, const std::filesystem::path& texture,
        const std::string& compression) const = 0;

protected:
    ~Formats() = default;
};

/// The file of the module, beside the program that loads it, and its variable of the type `const Formats*`.
constexpr const char* kFormatsModule = "fernwick-formats.so";
constexpr const char* kFormatsVariable = "fernwick_formats";

} // namespace fernwick
