#pragma once
#include <string>
#include <string_view>
#include <vector>

/// Tells something on stderr, behind the name of the command. Control characters are escaped, but for line ends before
/// an indented line.
void Tell(std::string_view text);

/// Tells what is doubtful in a document (see `GraphDocument::Doubts`), the first of it when there is much.
void TellDoubts(const std::vector<std::string>& doubts);
