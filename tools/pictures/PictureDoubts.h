#pragma once
#include "host/documents/GraphDocument.h"
#include "host/pictures/Picture.h"
#include <cstdint>
#include <span>

/// Looks at the pixels of a picture as they come, in pieces of any size, for what a user should be told of.
class PictureDoubts {
public:
    PictureDoubts() = default;
    explicit PictureDoubts(const fernwick::Picture& picture);

    void Add(std::span<const TMCColorRGBA> pixels);

    /// Whether the pixels so far are all black or all transparent.
    bool IsEmpty() const { return fIsBlack || fIsTransparent; }

    /// Tells of a picture that is black or transparent all over which slots of the shaders behind it are empty, if any
    /// are: what isn't plugged in is mostly why.
    void TellEmptySlots(const fernwick::GraphDocument& document) const;

    /// Tells how many pixels hold a NaN or an infinity, which a file of integers can't keep, if any do.
    /// @param file, layout  that the picture is written to, and how
    void TellOddNumbers(const std::string& file, const fernwick::PictureLayout& layout) const;

private:
    int64_t fPixels = 0;
    int64_t fOddPixels = 0; // with a NaN or an infinity
    bool fIsBlack = true;
    bool fIsTransparent = true;
};
