#include "tools/Frames.h"
#include <charconv>
#include <fmt/format.h>
#include <set>

namespace {

constexpr int kLastFrame = 999999;
constexpr std::string_view kNumberMark = "{frame}";

/// Takes a number off the start of a text.
bool TakeNumber(std::string_view& text, int& number)
{
    const auto [rest, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<size_t>(rest - text.data()));
    return failure == std::errc() && number >= 0 && number <= kLastFrame;
}

bool Take(std::string_view& text, char character)
{
    const bool isThere = text.starts_with(character);
    text.remove_prefix(isThere ? 1 : 0);
    return isThere;
}

/// Adds `5`, `1-24` or `1-24x2`.
bool AddRange(std::string_view text, std::set<int>& frames)
{
    int first = 0;
    if (!TakeNumber(text, first))
        return false;
    int last = first;
    int step = 1;
    if (Take(text, '-') && (!TakeNumber(text, last) || (Take(text, 'x') && !TakeNumber(text, step))))
        return false;
    if (!text.empty() || last < first || step < 1)
        return false;
    for (int frame = first; frame <= last; frame += step)
        frames.insert(frame);
    return true;
}

} // namespace

std::vector<int> ReadFrames(const std::string& text)
{
    std::set<int> frames;
    for (std::string_view rest = text;;) {
        const size_t comma = std::min(rest.find(','), rest.size());
        if (!AddRange(rest.substr(0, comma), frames))
            return {};
        if (comma == rest.size())
            break;
        rest.remove_prefix(comma + 1);
    }
    return {frames.begin(), frames.end()};
}

bool HasFrameNumber(const std::string& name)
{
    return name.find('#') != std::string::npos || name.find(kNumberMark) != std::string::npos;
}

std::string NameOfFrame(const std::string& name, int frame)
{
    std::string numbered;
    for (size_t i = 0; i < name.size();)
        if (name[i] == '#') {
            const size_t end = std::min(name.find_first_not_of('#', i), name.size());
            numbered += fmt::format("{:0{}}", frame, end - i);
            i = end;
        } else if (name.compare(i, kNumberMark.size(), kNumberMark) == 0) {
            numbered += std::to_string(frame);
            i += kNumberMark.size();
        } else {
            numbered += name[i++];
        }
    return numbered;
}
