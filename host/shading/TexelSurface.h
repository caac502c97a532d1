#pragma once
#include "frame/ShadingIn.h"
#include "host/shading/PixelPattern.h"
#include "host/shading/Tiles.h"
#include <memory>

namespace fernwick {

/// Which way U and V of a picture run along the surface: the derivatives of the position, of any length.
struct PictureAxes {
    TVector3 fDerivU;
    TVector3 fDerivV;
};

/// The samples of one tile of a baked picture, for one thread.
class TexelTile {
public:
    virtual ~TexelTile() = default;

    /// Further samples are for this graph, which outlives them: `fInstance` is an element of its scene. A tile has a
    /// graph for each operation that is read.
    virtual void Use(const Graph& graph) = 0;

    /// Further samples lie at this place in their pixels; any preparation of the whole tile is done here.
    virtual void MoveTo(const PixelPlace& place) = 0;

    /// The sample of a texel of the tile, for the graph and the place that were told last.
    /// @param x, y  in pixels of the picture, row 0 at the top; a caller goes row by row from the tile's top
    /// @param in    gets every field but the host's own spans, whatever a shader has left in it
    /// @return false where there is no surface: the texel stays transparent black, no shader is asked
    virtual bool SampleAt(int x, int y, ShadingIn& in) = 0;

    /// Whether all samples for the graph that was told last have the same normal and the same axes.
    virtual bool IsFlat() const { return false; }

    /// The axes of normal maps at the sample that was given last, in the coordinates of its object.
    virtual PictureAxes LocalAxes() const { return {{1, 0, 0}, {0, 1, 0}}; }

    /// The same in world coordinates.
    /// @param in  the sample, which no shader has changed
    virtual PictureAxes WorldAxes(const ShadingIn& in) const { return {in.fDerivU, in.fDerivV}; }
};

/// What a bake shades, such as the UV square. Asked by several threads at a time.
class TexelSurface {
public:
    virtual ~TexelSurface() = default;

    /// A graph whose scene holds the element that samples lie on: the document's own. Throws `GraphError`.
    virtual OwnGraph MakeGraphFor(const Library& library, const GraphDocument& document) const;

    /// @return null for a tile without any surface; no graph is made for it
    virtual std::unique_ptr<TexelTile> Open(const Tile& tile) const = 0;
};

} // namespace fernwick
