#pragma once
#include "frame/Layout.h"
#include <cstddef>
#include <cstdint>
#include <string_view>

/// A text with room for a fixed number of characters, stored inline behind its head. Characters are bytes
/// (UTF-8 in this host), so both lengths agree. The text always ends with a zero byte.
///
/// A text is read up to its zero byte and never past its room, whatever the counts in its head say.
class TMCString {
public:
    virtual uint32_t GetLength() const;     ///< characters in use
    virtual uint32_t GetByteLength() const; ///< bytes in use
    virtual uint32_t GetCapacity() const = 0;
    virtual const char* GetText() const = 0;

    /// Byte by byte, case counting: below, equal to or above 0.
    virtual int32_t Compare(const char* text, size_t length) const;

    /// Converts to UTF-16 with a closing zero; bytes that are no UTF-8 become U+FFFD. A text that doesn't fit
    /// raises "Bad size in TMCString::ToUnicode" and is cut.
    /// @param size  room of `out` in units, the closing zero included; with 0 nothing is written
    /// @return true when the whole text fitted
    virtual bool ToUnicode(char16_t* out, uint32_t size) const;

    /// Takes over as much of `text` as fits; a longer one raises a report and is cut.
    virtual void Assign(const char* text, size_t length);

    /// Does nothing when both are the same object.
    TMCString& operator=(const TMCString& other);
    TMCString& operator=(std::string_view text);
    friend bool operator==(const TMCString& left, const TMCString& right)
    {
        return left.Compare(right.GetText(), right.GetLength()) == 0;
    }
    friend bool operator==(const TMCString& left, std::string_view right)
    {
        return left.Compare(right.data(), right.size()) == 0;
    }

    /// Keeps the first `length` characters, all of them when there are no more than that.
    void Truncate(uint32_t length);

    bool IsEmpty() const { return GetLength() == 0; }

protected:
    explicit TMCString(uint32_t capacity) : fCapacity(capacity) { }
    TMCString(const TMCString&) = default;
    ~TMCString() = default;

    /// Stores what fits of `text` into `room`, which is this object's own and has a place for a zero byte behind
    /// `capacity` characters, and sets the counts. Calls no operation of this object.
    void Store(char* room, uint32_t capacity, std::string_view text);

private:
    uint32_t fLength = 0;
    uint32_t fByteLength = 0;
    uint32_t fCapacity;
};

/// A text with room for `kRoom` characters.
///
/// In a record that was saved and read back, a text is bytes of another process: what was its table of operations is
/// none here. So everything that is declared here goes by the characters alone, and `View`, copies, assignments and
/// comparisons of such a text are safe. Nobody else may be handed one: a host calls operations of what it is handed.
/// Hand out a copy, which is sound in every part.
template <uint32_t kRoom> class TMCStringOf final : public TMCString {
public:
    TMCStringOf() : TMCString(kRoom) { }
    explicit TMCStringOf(std::string_view text) : TMCStringOf() { *this = text; }
    TMCStringOf(const TMCStringOf& other) : TMCStringOf(other.View()) { }
    TMCStringOf& operator=(const TMCStringOf& other)
    {
        if (this != &other)
            *this = other.View();
        return *this;
    }
    TMCStringOf& operator=(std::string_view text)
    {
        Store(fText, kRoom, text);
        return *this;
    }
    using TMCString::operator=;

    uint32_t GetCapacity() const override { return kRoom; }
    const char* GetText() const override { return fText; }

    /// The characters up to the zero byte, all of the room when there is none.
    std::string_view View() const
    {
        const std::string_view room(fText, kRoom);
        return room.substr(0, room.find('\0'));
    }
    bool IsEmpty() const { return View().empty(); }
    friend bool operator==(const TMCStringOf& left, const TMCStringOf& right)
    {
        return left.View() == right.View();
    }
    friend bool operator==(const TMCStringOf& left, std::string_view right) { return left.View() == right; }

private:
    char fText[kRoom + 1] = {};
};

/// The form in parameter records.
using TMCString255 = TMCStringOf<255>;
static_assert(sizeof(TMCString255) == BySize(280, 272));
