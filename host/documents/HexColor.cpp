#include "host/documents/HexColor.h"
#include <OpenImageIO/color.h>
#include <algorithm>
#include <charconv>

namespace fernwick {

std::optional<TMCColorRGBA> ReadHexColor(std::string_view text)
{
    if ((text.size() != 7 && text.size() != 9) || text.front() != '#')
        return std::nullopt;
    float channels[4] = {0, 0, 0, 1};
    for (size_t i = 0; 2 * i + 1 < text.size(); ++i) {
        const char* const digits = text.data() + 2 * i + 1;
        uint8_t byte = 0;
        const auto [end, failure] = std::from_chars(digits, digits + 2, byte, 16);
        if (failure != std::errc() || end != digits + 2)
            return std::nullopt;
        channels[i] = static_cast<float>(byte) / 255;
    }
    std::for_each(channels, channels + 3, [](float& channel) { channel = OIIO::sRGB_to_linear(channel); });
    return TMCColorRGBA{channels[0], channels[1], channels[2], channels[3]};
}

} // namespace fernwick
