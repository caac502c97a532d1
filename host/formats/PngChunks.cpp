#include "host/formats/PngChunks.h"
#include <algorithm>
#include <array>
#include <boost/crc.hpp>
#include <fmt/format.h>
#include <fstream>
#include <string_view>

namespace fernwick {

namespace {

/// Reads big-endian numbers, names and what is summed up. All give nothing of use once the stream has failed.
class Chunks {
public:
    explicit Chunks(std::istream& stream) : fStream(stream) { }

    uint32_t Number()
    {
        uint32_t number = 0;
        for (const char byte : Bytes())
            number = number << 8 | static_cast<unsigned char>(byte);
        return number;
    }
    std::array<char, 4> Bytes()
    {
        std::array<char, 4> bytes{};
        fStream.read(bytes.data(), bytes.size());
        return bytes;
    }
    void SumUp(uint32_t size, boost::crc_32_type& sum)
    {
        std::array<char, 1 << 14> piece;
        while (fStream && size > 0) {
            const uint32_t count = std::min<uint32_t>(size, piece.size());
            fStream.read(piece.data(), count);
            sum.process_bytes(piece.data(), count);
            size -= count;
        }
    }

private:
    std::istream& fStream;
};

bool IsCapital(char letter) { return letter >= 'A' && letter <= 'Z'; }

bool IsLetter(char letter) { return IsCapital(letter) || (letter >= 'a' && letter <= 'z'); }

} // namespace

std::string WhyNoPng(const std::filesystem::path& file)
{
    constexpr std::streamoff kSignatureSize = 8;
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(kSignatureSize);
    Chunks chunks(stream);
    while (true) {
        const uint32_t size = chunks.Number();
        const std::array<char, 4> name = chunks.Bytes();
        boost::crc_32_type sum;
        sum.process_bytes(name.data(), name.size());
        const bool isName = std::all_of(name.begin(), name.end(), IsLetter);
        if (stream && isName)
            chunks.SumUp(size, sum);
        const uint32_t expected = isName ? chunks.Number() : 0;
        if (!stream)
            return "it is cut off";
        // Those with small letters may be passed over.
        if (!isName || (IsCapital(name[0]) && expected != sum.checksum()))
            return "it is damaged";
        if (std::string_view(name.data(), name.size()) == "IEND")
            return "";
    }
}

} // namespace fernwick
