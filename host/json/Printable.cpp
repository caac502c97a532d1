#include "host/json/Printable.h"
#include <algorithm>
#include <bit>
#include <cstdint>
#include <fmt/format.h>

namespace fernwick {

namespace {

unsigned char Byte(char letter) { return static_cast<unsigned char>(letter); }

/// How many bytes the character of UTF-8 takes that the text starts with; 0 for none, such as a longer form than is
/// needed, half of a pair of UTF-16 or what lies behind U+10FFFF.
size_t CharacterSize(std::string_view text)
{
    constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000}; // that needs so many bytes
    const auto ones = static_cast<size_t>(std::countl_one(Byte(text[0])));
    if (ones == 0)
        return 1;
    if (ones == 1 || ones >= std::size(kLeast) || ones > text.size())
        return 0;
    uint32_t code = Byte(text[0]) & (0x7Fu >> ones);
    for (const char letter : text.substr(1, ones - 1)) {
        if ((Byte(letter) & 0xC0) != 0x80)
            return 0;
        code = code << 6 | (Byte(letter) & 0x3Fu);
    }
    const bool isHalf = code >= 0xD800 && code < 0xE000;
    return code >= kLeast[ones] && code <= 0x10FFFF && !isHalf ? ones : 0;
}

} // namespace

std::string Printable(std::string_view text)
{
    std::string shown;
    while (!text.empty()) {
        const size_t size = CharacterSize(text);
        const unsigned char first = Byte(text[0]);
        if (size == 0)
            shown += fmt::format("\\x{:02x}", first);
        else if (first < 0x20 || first == 0x7F)
            shown += fmt::format("\\u{:04x}", first);
        else if (first == 0xC2 && Byte(text[1]) < 0xA0) // U+0080 to U+009F
            shown += fmt::format("\\u{:04x}", Byte(text[1]));
        else
            shown += text.substr(0, size);
        text.remove_prefix(std::max<size_t>(size, 1));
    }
    return shown;
}

} // namespace fernwick
