#include "host/parameters/Kinds.h"
#include <fmt/format.h>
#include <span>

namespace fernwick {

namespace {

struct NamedBit {
    int32_t bit;
    const char* name;
};

constexpr NamedBit kKinds[] = {
    {kOutputValue, "value"},
    {kOutputColor, "color"},
    {kOutputVector, "vector"},
    {kOutputSurface, "surface"},
};

constexpr NamedBit kNeeds[] = {
    {kNeedsUV, "UV"},
    {kNeedsPointGlobal, "point (world)"},
    {kNeedsPointLocal, "point (object)"},
    {kNeedsNormalGlobal, "normal (world)"},
    {kNeedsNormalLocal, "normal (object)"},
    {kNeedsDerivatives, "derivatives"},
    {kNeedsExtraA, "host data A"},
    {kNeedsExtraB, "host data B"},
    {kNeedsExtraC, "host data C"},
};

std::vector<std::string> NamesOf(int32_t bits, std::span<const NamedBit> names)
{
    std::vector<std::string> found;
    for (const NamedBit& named : names)
        if ((bits & named.bit) != 0)
            found.emplace_back(named.name);
    return found;
}

} // namespace

std::string KindsText(int32_t kinds) { return Joined(KindNames(kinds)); }

std::vector<std::string> KindNames(int32_t kinds) { return NamesOf(kinds, kKinds); }

std::vector<std::string> NeedNames(const ShadingFlags& flags) { return NamesOf(flags.fNeeds, kNeeds); }

std::string Joined(const std::vector<std::string>& names)
{
    return names.empty() ? "none" : fmt::format("{}", fmt::join(names, ", "));
}

} // namespace fernwick
