#pragma once
#include "host/shading/SceneTexels.h"

namespace fernwick {

/// One element's shape, which is no mesh, as a picture of its U to the right and V up. Each texel is a point of the shape
/// itself.
class ShapeTexels final : public SceneTexels {
public:
    /// @param document       with a scene; outlives it
    /// @param element        the name of an element with such a shape
    /// @param width, height  of the picture in pixels
    /// Throws `GraphError`, also when there is no such element.
    ShapeTexels(const Library& library, const GraphDocument& document, const std::string& element, int width,
        int height);

    std::unique_ptr<TexelTile> Open(const Tile& tile) const override;

private:
    class OpenTile;

    int fWidth;
    int fHeight;
};

} // namespace fernwick
