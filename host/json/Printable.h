#pragma once
#include <string>
#include <string_view>

namespace fernwick {

/// A text for a terminal: control characters, which could steer it, stand as JSON escapes them, such as `\u001b`,
/// and bytes that aren't UTF-8 in hexadecimal, such as `\xff`.
std::string Printable(std::string_view text);

} // namespace fernwick
