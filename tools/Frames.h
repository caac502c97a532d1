#pragma once
#include <string>
#include <vector>

/// The frames of a text such as `1-24`, `1-24x2` (every other one) or `1,5,9-12`, each once, in ascending order; none
/// for any other text. Numbers are 0 to 999999.
std::vector<int> ReadFrames(const std::string& text);

/// Whether a name has a place for the number of a frame.
bool HasFrameNumber(const std::string& name);

/// The name of a frame's file: a run of `#` becomes the number with as many digits or more, `{frame}` the number.
std::string NameOfFrame(const std::string& name, int frame);
