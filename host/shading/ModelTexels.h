#pragma once
#include "host/documents/ModelScene.h"
#include "host/geometry/MeshTexels.h"
#include "host/shading/NormalGrids.h"
#include "host/shading/TexelSurface.h"

namespace fernwick {

/// The meshes of a scene's elements as pictures show them that are laid out by their UV. Samples are those of rays
/// that meet the mesh there: each lies on its element at its place in the scene, with the UV and derivatives of the
/// mesh's first set. So what is baked is what is rendered, of which the scene's camera is part where shaders ask for
/// it: the one that the scene names, or else its first.
class ModelTexels final : public TexelSurface {
public:
    static constexpr int kLongestSide = MeshTexels::kLongestSide; ///< of the picture of a tile, in pixels

    /// @param onto           outlives it
    /// @param set            of UV, by which the targets are laid out
    /// @param width, height  of the picture of the tile, in pixels, up to `kLongestSide`
    /// Throws `GraphError`, and `BakeError` where a target hasn't as many sets of UV.
    ModelTexels(
        const Library& library, const OntoModel& onto, size_t set, const UVTile& tile, int width, int height);

    /// A graph over the document's scene, of that document or of another one, whose own scene doesn't count.
    OwnGraph MakeGraphFor(const Library& library, const GraphDocument& document) const override;
    std::unique_ptr<TexelTile> Open(const Tile& tile) const override;

    int Width() const { return fWidth; }
    const MeshTexels& Texels() const { return fTexels; }

private:
    class OpenTile;

    const GraphDocument& fDocument;
    const std::vector<size_t>& fTargets;
    SceneDescription fDescription;
    MCCountedPtr<Scene> fScene; // samples lie on those of the graphs
    size_t fSet;
    UVTile fTile;
    int fWidth;
    int fHeight;
    MeshTexels fTexels;
    NormalGrids fGrids;

    NormalGrids MakeGrids(const Library& library) const;
};

/// The meshes that a bake goes onto, in their order. They point into the document.
/// Throws `BakeError` where one hasn't as many sets of UV.
std::vector<UVMesh> UVMeshesOf(const OntoModel& onto, size_t set);

} // namespace fernwick
