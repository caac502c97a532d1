#include "host/documents/HexColor.h"
#include <OpenImageIO/color.h>
#include <algorithm>
#include <charconv>

namespace fernwick {

std::optional<TMCColorRGBA> ReadHexColor(std::string_view text)
{
    if (text.empty() || text.front() != '#')
        return std::nullopt;
    text.remove_prefix(1);
    const bool isShort = text.size() == 3 || text.size() == 4; // each digit stands for two of it
    if (!isShort && text.size() != 6 && text.size() != 8)
        return std::nullopt;
    const size_t length = isShort ? 1 : 2;
    float channels[4] = {0, 0, 0, 1};
    for (size_t i = 0; i * length < text.size(); ++i) {
        const char* const digits = text.data() + i * length;
        uint8_t byte = 0;
        const auto [end, failure] = std::from_chars(digits, digits + length, byte, 16);
        if (failure != std::errc() || end != digits + length)
            return std::nullopt;
        channels[i] = static_cast<float>(isShort ? byte * 0x11 : byte) / 255;
    }
    std::for_each(channels, channels + 3, [](float& channel) { channel = OIIO::sRGB_to_linear(channel); });
    return TMCColorRGBA{channels[0], channels[1], channels[2], channels[3]};
}

} // namespace fernwick
