#include "host/files/RegularFile.h"
#include "host/formats/Formats.h"
#include "host/library/Module.h"
#include <fmt/format.h>
#include <stdexcept>

// What `host/formats` does, by its module, which is loaded when a file is first to be read or written that needs it.

namespace fernwick {

namespace {

/// Throws when it can't be loaded.
const Formats& LoadFormats()
{
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path file = program.parent_path() / kFormatsModule;
    std::string reason = WhyNoFile(file);
    if (reason.empty()) {
        void* const module = OpenModule(file); // which stays
        if (void* const variable = module != nullptr ? FindFunction(module, kFormatsVariable) : nullptr)
            return **static_cast<const Formats* const*>(variable);
        reason = module == nullptr ? LastModuleFailure() : "it is another module";
    }
    throw std::runtime_error(
        fmt::format("{}: can't be loaded: {}; it reads pictures and writes all files but PNG: build or "
                    "install all of the command",
            file.string(), reason));
}

const Formats& LoadedFormats()
{
    static const Formats& formats = LoadFormats();
    return formats;
}

} // namespace

FilePicture ReadPictureFile(const PictureSettings& settings)
{
    return LoadedFormats().ReadPictureFile(settings);
}

std::unique_ptr<PictureEncoder> MakeEXREncoder(const EncodingJob& encoding)
{
    return LoadedFormats().MakeEXREncoder(encoding);
}

std::unique_ptr<PictureEncoder> MakeTIFFEncoder(const EncodingJob& encoding)
{
    return LoadedFormats().MakeTIFFEncoder(encoding);
}

void MakeTexture(const std::filesystem::path& picture, const std::filesystem::path& texture,
    const std::string& compression)
{
    LoadedFormats().MakeTexture(picture, texture, compression);
}

} // namespace fernwick
