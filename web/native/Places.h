#pragma once
#include "host/json/ParseJson.h"
#include <string>

/// A text that begins with a place of a document, such as `cloth.fRange[3]: expected two numbers`, parted into both.
struct PlacedText {
    std::string fPointer; ///< to the place, as RFC 6901 has it; empty for all of the document
    std::string fMessage; ///< what is said of it
};

/// Finds the place that a text names in a document. A text that names none is kept whole.
PlacedText FindPlace(const std::string& text, const fernwick::Json& document);
