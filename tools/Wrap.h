#pragma once
#include <string>
#include <string_view>
#include <vector>

/// The columns of the terminal that stdout is; 80 when it is none, or one that doesn't tell.
size_t TerminalWidth();

/// A text in lines, broken at blanks. A word that is longer than a line has one of its own.
/// @param width  of a line, in bytes
std::vector<std::string> Wrapped(std::string_view text, size_t width);
