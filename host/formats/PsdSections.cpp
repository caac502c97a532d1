#include "host/formats/PsdSections.h"
#include <array>
#include <fstream>
#include <string_view>

namespace fernwick {

namespace {

/// A big-endian number; of no use once the stream has failed.
uint64_t Number(std::istream& stream, int size)
{
    uint64_t number = 0;
    for (int i = 0; i < size; ++i)
        number = number << 8 | static_cast<unsigned char>(stream.get());
    return number;
}

} // namespace

std::string WhyNoPsd(const std::filesystem::path& file)
{
    constexpr std::streamoff kHeaderSize = 26;
    constexpr uint64_t kLargeDocument = 2; // the version of a PSB
    std::error_code error;
    const uint64_t size = std::filesystem::file_size(file, error);
    std::ifstream stream(file, std::ios::binary);
    std::array<char, 4> signature{};
    stream.read(signature.data(), signature.size());
    if (error || std::string_view(signature.data(), signature.size()) != "8BPS")
        return "";
    const bool isLarge = Number(stream, 2) == kLargeDocument;
    stream.seekg(kHeaderSize);
    // Colours of an index, resources, layers; the picture follows.
    for (const int sizeOfSize : {4, 4, isLarge ? 8 : 4}) {
        const uint64_t section = Number(stream, sizeOfSize);
        if (!stream || section > size - static_cast<uint64_t>(stream.tellg()))
            return "it is cut off";
        stream.seekg(static_cast<std::streamoff>(section), std::ios::cur);
    }
    return "";
}

} // namespace fernwick
