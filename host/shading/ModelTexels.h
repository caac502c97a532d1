#pragma once
#include "host/documents/ModelScene.h"
#include "host/geometry/MeshTexels.h"
#include "host/shading/SceneTexels.h"

namespace fernwick {

/// The meshes of a scene's elements as pictures show them that are laid out by their UV. Samples have the UV and
/// derivatives of the mesh's first set.
class ModelTexels final : public SceneTexels {
public:
    static constexpr int kLongestSide = MeshTexels::kLongestSide; ///< of the picture of a tile, in pixels

    /// @param onto           outlives it
    /// @param set            of UV, by which the targets are laid out
    /// @param width, height  of the picture of the tile, in pixels, up to `kLongestSide`
    /// Throws `GraphError`, and `BakeError` where a target hasn't as many sets of UV.
    ModelTexels(
        const Library& library, const OntoModel& onto, size_t set, const UVTile& tile, int width, int height);

    std::unique_ptr<TexelTile> Open(const Tile& tile) const override;

    int Width() const { return fWidth; }
    const MeshTexels& Texels() const { return fTexels; }

private:
    class OpenTile;

    size_t fSet;
    UVTile fTile;
    int fWidth;
    int fHeight;
    MeshTexels fTexels;
};

/// The meshes that a bake goes onto, in their order. They point into the document.
/// Throws `BakeError` where one hasn't as many sets of UV.
std::vector<UVMesh> UVMeshesOf(const OntoModel& onto, size_t set);

} // namespace fernwick
