#include "tools/pictures/PictureDoubts.h"
#include "tools/Tell.h"
#include <algorithm>
#include <array>
#include <bit>
#include <fmt/format.h>

namespace {

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

PictureDoubts::PictureDoubts(const fernwick::Picture& picture)
{
    for (int y = 0; y < picture.Height(); ++y)
        Add({&picture.At(0, y), static_cast<size_t>(picture.Width())});
}

void PictureDoubts::Add(std::span<const TMCColorRGBA> pixels)
{
    constexpr uint32_t kExponent = 0x7F800000; // whole in a NaN and in an infinity
    for (const TMCColorRGBA& color : pixels) {
        const auto bits = std::bit_cast<std::array<uint32_t, 4>>(color);
        const auto isOdd = [](uint32_t number) -> int64_t { return (number & kExponent) == kExponent; };
        fIsBlack &= ((bits[0] | bits[1] | bits[2]) << 1) == 0; // but for signs
        fIsTransparent &= (bits[3] << 1) == 0;
        fOddPixels += isOdd(bits[0]) | isOdd(bits[1]) | isOdd(bits[2]) | isOdd(bits[3]);
    }
    fPixels += static_cast<int64_t>(pixels.size());
}

void PictureDoubts::TellEmptySlots(const fernwick::GraphDocument& document) const
{
    if (!IsEmpty())
        return;
    std::vector<std::string> slots;
    for (size_t i = 0; i <= document.OutputIndex(); ++i)
        for (const std::string& slot : EmptySlotsOf(document.Shaders()[i]))
            slots.push_back(fmt::format("{}.{}", document.Shaders()[i].fName, slot));
    if (!slots.empty())
        Tell(fmt::format("the picture is {} all over; nothing is plugged into {}",
            fIsTransparent ? "transparent" : "black", Listed(slots)));
}

void PictureDoubts::TellOddNumbers(const std::string& file, const fernwick::PictureLayout& layout) const
{
    if (fOddPixels > 0 && !HoldsFloats(file, layout))
        Tell(fmt::format(
            "{} of {} pixels hold a NaN or an infinity, which a .{} can't keep; save an .exr to see them",
            fOddPixels, fPixels,
            fernwick::FormatOf(file) == fernwick::PictureFormat::kTIFF ? "tif of integers" : "png"));
}
