#include "host/formats/Formats.h"
#include <dlfcn.h>
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
    void* const module = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL); // which stays
    void* const variable = module != nullptr ? dlsym(module, kFormatsVariable) : nullptr;
    if (variable == nullptr)
        throw std::runtime_error(fmt::format(
            "what reads pictures, and writes all but PNG, can't be loaded: {}; build or install all of "
            "the command",
            dlerror()));
    return **static_cast<const Formats* const*>(variable);
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
