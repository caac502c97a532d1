#include "tools/ShadeOptions.h"
#include <charconv>

const std::vector<std::string>& ShadeShapes()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const fernwick::NamedShape& row : fernwick::kShadeShapes)
            all.emplace_back(row.name);
        return all;
    }();
    return names;
}

std::optional<TVector2> ReadSample(const std::string& text)
{
    TVector2 uv;
    const char* const end = text.data() + text.size();
    const auto [comma, failureU] = std::from_chars(text.data(), end, uv[0]);
    if (failureU != std::errc() || comma == end || *comma != ',')
        return std::nullopt;
    const auto [rest, failureV] = std::from_chars(comma + 1, end, uv[1]);
    return failureV == std::errc() && rest == end ? std::optional(uv) : std::nullopt;
}
