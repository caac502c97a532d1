#include "tools/Kinds.h"
#include <span>

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

std::string NamesOf(int32_t bits, std::span<const NamedBit> names)
{
    std::string text;
    for (const NamedBit& named : names)
        if ((bits & named.bit) != 0)
            text += (text.empty() ? "" : ", ") + std::string(named.name);
    return text.empty() ? "none" : text;
}

} // namespace

std::string KindsText(int32_t kinds) { return NamesOf(kinds, kKinds); }

std::string NeedsText(const ShadingFlags& flags) { return NamesOf(flags.fNeeds, kNeeds); }
