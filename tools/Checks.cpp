#include "tools/Checks.h"
#include "host/json/Nearest.h"
#include <algorithm>
#include <charconv>
#include <fmt/format.h>

namespace {

template <class Number> CLI::Validator NumberWithin(Number least, Number most, const char* kind)
{
    const auto check = [least, most, kind](const std::string& text) {
        Number number{};
        const auto [rest, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
        const bool isNumber = failure == std::errc() && rest == text.data() + text.size();
        return isNumber && number >= least && number <= most
            ? std::string()
            : fmt::format("expected {} from {} to {}, got \"{}\"", kind, least, most, text);
    };
    return {check, ""};
}

} // namespace

CLI::Validator OneOf(std::vector<std::string> words)
{
    const auto check = [words = std::move(words)](const std::string& word) {
        if (std::find(words.begin(), words.end(), word) != words.end())
            return std::string();
        const std::string hint = fernwick::NearestHint(word, words);
        return fmt::format("expected one of {}, got \"{}\"{}", fmt::join(words, ", "), word, hint);
    };
    return {check, ""};
}

CLI::Validator WholeNumber(int least, int most) { return NumberWithin(least, most, "an integer"); }

CLI::Validator AnyNumber(double least, double most) { return NumberWithin(least, most, "a number"); }
