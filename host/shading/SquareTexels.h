#pragma once
#include "host/shading/TexelSurface.h"

namespace fernwick {

/// The UV square as a picture shows it: U runs to the right, V up.
class SquareTexels final : public TexelSurface {
public:
    /// @param width, height  of the picture in pixels
    SquareTexels(int width, int height) : fWidth(width), fHeight(height) { }

    std::unique_ptr<TexelTile> Open(const Tile& tile) const override;

private:
    int fWidth;
    int fHeight;
};

} // namespace fernwick
