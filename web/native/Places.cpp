#include "web/native/Places.h"
#include <algorithm>
#include <charconv>
#include <optional>

namespace {

using fernwick::Json;

std::string Escaped(std::string_view key)
{
    std::string escaped;
    for (const char letter : key)
        if (letter == '~' || letter == '/')
            escaped += letter == '~' ? "~0" : "~1";
        else
            escaped += letter;
    return escaped;
}

/// Goes along a text from one value of a document to those in it, as far as the text names them.
class Walker {
public:
    Walker(const Json& value, std::string pointer, std::string_view text)
        : fValue(&value), fPointer(std::move(pointer)), fText(text)
    { }

    /// What is left behind the place; nothing when the text doesn't go on with ": " there.
    std::optional<PlacedText> Walk()
    {
        while (StepToMember() || StepToElement())
            SkipDot();
        if (fPointer.empty() || !fText.starts_with(": "))
            return std::nullopt;
        return PlacedText{fPointer, std::string(fText.substr(2))};
    }

private:
    const Json* fValue;
    std::string fPointer;
    std::string_view fText;

    void SkipDot()
    {
        if (fText.starts_with('.'))
            fText.remove_prefix(1);
    }

    /// To the member with the longest key that the text begins with: keys may hold dots and brackets themselves.
    bool StepToMember()
    {
        if (!fValue->is_object())
            return false;
        const std::string* longest = nullptr;
        for (const auto& [key, member] : fValue->items()) {
            const bool ends = fText.size() > key.size()
                && std::string_view(".[:").find(fText[key.size()]) != std::string_view::npos;
            if (fText.starts_with(key) && ends && (longest == nullptr || key.size() > longest->size()))
                longest = &key;
        }
        if (longest == nullptr)
            return false;
        fText.remove_prefix(longest->size());
        fPointer += '/' + Escaped(*longest);
        fValue = &(*fValue)[*longest];
        return true;
    }

    bool StepToElement()
    {
        size_t index = 0;
        const char* const start = fText.data() + 1;
        if (!fValue->is_array() || !fText.starts_with('['))
            return false;
        const auto [end, failure] = std::from_chars(start, fText.data() + fText.size(), index);
        if (failure != std::errc() || index >= fValue->size() || *end != ']')
            return false;
        fText.remove_prefix(static_cast<size_t>(end + 1 - fText.data()));
        fPointer += '/' + std::to_string(index);
        fValue = &(*fValue)[index];
        return true;
    }
};

} // namespace

PlacedText FindPlace(const std::string& text, const Json& document)
{
    if (document.is_object()) {
        if (const auto shaders = document.find("shaders"); shaders != document.end()) // which texts leave out
            if (auto placed = Walker(*shaders, "/shaders", text).Walk();
                placed && placed->fPointer != "/shaders")
                return *placed;
        if (const auto placed = Walker(document, "", text).Walk())
            return *placed;
    }
    return {"", text};
}
