#pragma once
#include "host/documents/GraphDocument.h"
#include "host/pictures/Picture.h"
#include <string_view>

/// Tells something on stderr, behind the name of the command. Control characters are escaped, but for line ends before
/// an indented line.
void Tell(std::string_view text);

/// Tells what is doubtful in a document (see `GraphDocument::Doubts`), the first of it when there is much.
void TellDoubts(const fernwick::GraphDocument& document);

/// Tells of a picture that is black or transparent all over which slots of the shaders behind it are empty, if any
/// are: what isn't plugged in is mostly why.
void TellEmptySlots(const fernwick::Picture& picture, const fernwick::GraphDocument& document);

/// Tells how many pixels hold a NaN or an infinity, which a .png can't keep, if any do.
/// @param file  that the picture is written to
void TellOddNumbers(const fernwick::Picture& picture, const std::string& file);
