#pragma once
#include <nlohmann/json.hpp>
#include <string>

namespace fernwick {

using Json = nlohmann::ordered_json;

/// Parses a text in time that grows with its length alone. Throws `GraphError`: of a syntax error with line and
/// column, of a key that occurs twice in an object with the place of the object, of a number that no double holds with
/// its place, of nesting deeper than 256, and of what is no text, such as a picture, with what it seems to be.
Json ParseJson(const std::string& text);

} // namespace fernwick
