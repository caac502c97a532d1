#pragma once
#include "frame/Colors.h"
#include <optional>
#include <string_view>

namespace fernwick {

/// Reads a colour as the web writes it, `#rrggbb` or `#rrggbbaa`, or short `#rgb` or `#rgba`: encoded as sRGB, with a straight alpha, opaque
/// without one.
/// @return linear light; nothing for any other text
std::optional<TMCColorRGBA> ReadHexColor(std::string_view text);

} // namespace fernwick
