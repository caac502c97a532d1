#pragma once
#include <vector>

namespace fernwick {

/// A place in a pixel, from its upper left corner, 0 to 1.
struct PixelPlace {
    double fRight;
    double fDown;
};

/// Where the samples of a pixel lie, the same in all: a Hammersley set, moved to the middle of its cells. A single
/// one is the centre.
class PixelPattern {
public:
    /// @param count  of samples a pixel, above 0
    explicit PixelPattern(int count);

    const std::vector<PixelPlace>& Places() const { return fPlaces; }

private:
    std::vector<PixelPlace> fPlaces;
};

} // namespace fernwick
