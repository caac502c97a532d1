// Bytes are a picture file, the first of them the ending of its name. It is refused with a SourceError, or it is a source
// of colours.
#include "host/sources/PictureSource.h"
#include <fstream>
#include <iterator>
#include <unistd.h>

using namespace fernwick;

namespace {

constexpr const char* kEndings[]
    = {"png", "exr", "tif", "jpg", "gif", "bmp", "tga", "hdr", "webp", "ppm", "pfm", "sgi", "ico", "dpx",
        "jp2", "iff", "rla", "fits", "psd", "cin", "dds", "pic", "heic", "avif", "zfile"};

/// A file for one input after the other, gone with the process.
struct OwnFile {
    std::filesystem::path path;

    explicit OwnFile(const char* ending)
        : path(std::filesystem::temp_directory_path()
            / ("fernwick-fuzz-" + std::to_string(getpid()) + '.' + ending))
    { }
    ~OwnFile() { std::filesystem::remove(path); }
};

} // namespace

/// Decoders lose what they had made of a file that they refuse.
extern "C" const char* __lsan_default_suppressions() { return "leak:libOpenImageIO.so"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const OwnFile file(kEndings[data[0] % std::size(kEndings)]);
    std::ofstream(file.path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data + 1), static_cast<std::streamsize>(size - 1));
    try {
        const auto source = MakeCounted<PictureSource>(PictureSettings{.fFile = file.path});
        for (const float place : {-3.5f, 0.0f, 0.25f, 0.999f, 1e30f})
            source->ColorAt({place, 1 - place});
    } catch (const SourceError&) {
        return 0;
    }
    return 0;
}
