#include "host/json/Printable.h"
#include <fmt/format.h>

namespace fernwick {

std::string Printable(std::string_view text)
{
    std::string shown;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        if (byte < 0x20 || byte == 0x7F) {
            shown += fmt::format("\\u{:04x}", byte);
        } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) { // U+0080 to U+009F in UTF-8
            shown += fmt::format("\\u{:04x}", next);
            ++i;
        } else {
            shown += text[i];
        }
    }
    return shown;
}

} // namespace fernwick
