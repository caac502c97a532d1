#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace fernwick {

/// The longest piece of a document that a message shows, in bytes.
constexpr size_t kShownBytes = 60;

/// A text for a terminal: control characters, which could steer it, stand as JSON escapes them, such as `\u001b`,
/// and bytes that aren't UTF-8 in hexadecimal, such as `\xff`.
std::string Printable(std::string_view text);

} // namespace fernwick
