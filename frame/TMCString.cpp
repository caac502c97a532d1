#include "frame/TMCString.h"
#include "frame/DebugReport.h"
#include <algorithm>
#include <cstring>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// Reads one character of UTF-8 and moves `text`, which is not at `end`, behind it; a wrong byte is passed over
/// alone.
char32_t NextCharacter(const unsigned char*& text, const unsigned char* end)
{
    const unsigned char lead = *text++;
    if (lead < 0x80)
        return lead;
    const int following = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead >= 0xF5 || end - text < following)
        return kReplacement;
    char32_t character = lead & (0x3F >> following);
    for (int i = 0; i < following; ++i) {
        if ((text[i] & 0xC0) != 0x80)
            return kReplacement;
        character = character << 6 | (text[i] & 0x3F);
    }
    constexpr char32_t kLowest[] = {0, 0x80, 0x800, 0x10000};
    const bool surrogate = character >= 0xD800 && character < 0xE000;
    if (character < kLowest[following] || character > 0x10FFFF || surrogate)
        return kReplacement;
    text += following;
    return character;
}

} // namespace

uint32_t TMCString::GetLength() const { return static_cast<uint32_t>(strnlen(GetText(), GetCapacity())); }

uint32_t TMCString::GetByteLength() const { return GetLength(); }

int32_t TMCString::Compare(const char* text, size_t length) const
{
    return std::string_view(GetText(), GetLength()).compare(std::string_view(text, length));
}

bool TMCString::ToUnicode(char16_t* out, uint32_t size) const
{
    const unsigned char* text = reinterpret_cast<const unsigned char*>(GetText());
    const unsigned char* const end = text + GetLength();
    uint32_t used = 0;
    bool fits = size > 0;
    while (fits && text < end) {
        const char32_t character = NextCharacter(text, end);
        const uint32_t units = character >= 0x10000 ? 2 : 1;
        fits = used + units < size;
        if (!fits)
            break;
        if (units == 2) {
            out[used++] = static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            out[used++] = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
        } else {
            out[used++] = static_cast<char16_t>(character);
        }
    }
    if (size > 0)
        out[used] = 0;
    if (!fits)
        MC_REPORT("Bad size in TMCString::ToUnicode");
    return fits;
}

void TMCString::Assign(const char* text, size_t length)
{
    Store(const_cast<char*>(GetText()), GetCapacity(), {text, length});
}

TMCString& TMCString::operator=(const TMCString& other)
{
    if (this != &other)
        Assign(other.GetText(), other.GetLength());
    return *this;
}

TMCString& TMCString::operator=(std::string_view text)
{
    Assign(text.data(), text.size());
    return *this;
}

void TMCString::Truncate(uint32_t length)
{
    if (length < GetLength())
        Assign(GetText(), length);
}

void TMCString::Store(char* room, uint32_t capacity, std::string_view text)
{
    if (text.size() > capacity)
        MC_REPORT("length <= GetCapacity()");
    const uint32_t kept = static_cast<uint32_t>(std::min<size_t>(text.size(), capacity));
    if (kept > 0)
        std::memmove(room, text.data(), kept); // which may lie in `room`
    room[kept] = 0;
    fLength = kept;
    fByteLength = kept;
    fCapacity = capacity;
}
