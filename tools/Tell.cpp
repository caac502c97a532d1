#include "tools/Tell.h"
#include "host/json/Printable.h"
#include "tools/Streams.h"
#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace {

enum class Emptiness { kNone, kBlack, kTransparent };

Emptiness EmptinessOf(const fernwick::Picture& picture)
{
    bool isBlack = true;
    bool isTransparent = true;
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x) {
            const TMCColorRGBA& color = picture.At(x, y);
            isTransparent = isTransparent && color.fAlpha == 0;
            isBlack = isBlack && color.fRed == 0 && color.fGreen == 0 && color.fBlue == 0;
        }
    if (isTransparent)
        return Emptiness::kTransparent;
    return isBlack ? Emptiness::kBlack : Emptiness::kNone;
}

/// The slots that nothing is plugged into, an array of which none is used as one: `fWarpSubShader[0..4]`.
std::vector<std::string> EmptySlotsOf(const fernwick::DocumentShader& shader)
{
    std::vector<std::string> plugged;
    for (const fernwick::FieldSetting& setting : shader.fSettings)
        if (const auto* const slot = std::get_if<fernwick::PluggedShader>(&setting.fValue);
            slot && slot->fIndex)
            plugged.push_back(setting.fField->fName);
    std::vector<std::string> empty;
    for (const fernwick::Row& row : shader.fTable->fRows) {
        if (row.fField.fType != fernwick::FieldType::kShader || !row.fRows.empty())
            continue;
        const std::string& name = row.fField.fName;
        const auto isPlugged = [&](const std::string& start) {
            return std::any_of(plugged.begin(), plugged.end(),
                [&start](const std::string& one) { return one.starts_with(start); });
        };
        if (row.fCounts.empty() && !isPlugged(name))
            empty.push_back(name);
        else if (!row.fCounts.empty() && !isPlugged(name + '['))
            empty.push_back(fmt::format("{}[0..{}]", name, row.fCounts[0] - 1));
        else
            for (size_t i = 0; !row.fCounts.empty() && i < row.fCounts[0]; ++i)
                if (const std::string one = fmt::format("{}[{}]", name, i); !isPlugged(one))
                    empty.push_back(one);
    }
    return empty;
}

/// The texts with commas, the first of them when there are many.
std::string Listed(const std::vector<std::string>& texts)
{
    constexpr size_t kMost = 8;
    const size_t shown = std::min(texts.size(), kMost);
    std::string list
        = fmt::format("{}", fmt::join(texts.begin(), texts.begin() + static_cast<ptrdiff_t>(shown), ", "));
    return shown == texts.size() ? list : fmt::format("{} and {} more", list, texts.size() - shown);
}

} // namespace

void Tell(std::string_view text)
{
    std::string shown;
    for (size_t end = text.find("\n  "); end != std::string::npos; end = text.find("\n  ")) {
        shown += fernwick::Printable(text.substr(0, end)) + '\n';
        text.remove_prefix(end + 1);
    }
    PrintOnStderr(fmt::format("fernwick: {}{}\n", shown, fernwick::Printable(text)));
}

void TellDoubts(const fernwick::GraphDocument& document)
{
    constexpr size_t kMost = 20;
    const std::vector<std::string>& doubts = document.Doubts();
    const size_t shown = std::min(doubts.size(), kMost);
    for (size_t i = 0; i < shown; ++i)
        Tell(doubts[i]);
    if (shown < doubts.size())
        Tell(fmt::format("{} more fields hold what isn't expected", doubts.size() - shown));
}

void TellEmptySlots(const fernwick::Picture& picture, const fernwick::GraphDocument& document)
{
    const Emptiness emptiness = EmptinessOf(picture);
    if (emptiness == Emptiness::kNone)
        return;
    std::vector<std::string> slots;
    for (size_t i = 0; i <= document.OutputIndex(); ++i)
        for (const std::string& slot : EmptySlotsOf(document.Shaders()[i]))
            slots.push_back(fmt::format("{}.{}", document.Shaders()[i].fName, slot));
    if (!slots.empty())
        Tell(fmt::format("the picture is {} all over; nothing is plugged into {}",
            emptiness == Emptiness::kBlack ? "black" : "transparent", Listed(slots)));
}

void TellOddNumbers(const fernwick::Picture& picture, const std::string& file)
{
    if (fernwick::HoldsLayers(file))
        return;
    int64_t odd = 0;
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x) {
            const TMCColorRGBA& color = picture.At(x, y);
            for (const float channel : {color.fRed, color.fGreen, color.fBlue, color.fAlpha})
                if (!std::isfinite(channel)) {
                    ++odd;
                    break;
                }
        }
    if (odd > 0)
        Tell(fmt::format(
            "{} of {} pixels hold a NaN or an infinity, which a .png can't keep; save an .exr to see them",
            odd, int64_t{picture.Width()} * picture.Height()));
}
