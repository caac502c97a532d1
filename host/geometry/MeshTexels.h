#pragma once
#include "host/geometry/UVPlane.h"
#include <limits>

namespace fernwick {

/// A part of a picture in pixels from the upper left; the ends aren't in it.
struct TexelArea {
    int fLeft;
    int fTop;
    int fRight;
    int fBottom;
};

/// The place of a triangle that lies under a place of a picture.
struct Texel {
    static constexpr unsigned kUncovered = std::numeric_limits<unsigned>::max();

    unsigned fMesh = kUncovered; ///< its place among the meshes
    unsigned fTriangle = 0;
    float fU = 0; ///< as in `SurfaceHit`
    float fV = 0;
    bool fIsOverlapped = false; ///< by another triangle

    bool IsCovered() const { return fMesh != kUncovered; }
    SurfaceHit Hit() const { return {0, fTriangle, fU, fV}; }
};

/// Tells what triangles of meshes cover which texels of a picture.
///
/// A place belongs to the triangle that it lies in, found without rounding; one on an edge to the triangle on one
/// side of it, and on a corner to one of those around it, so that triangles that share edges leave no gap and don't
/// overlap. Where they do overlap the first counts, in the order of the meshes and of their triangles.
///
/// Takes memory for each triangle and for each square of 128 by 128 texels. Never changes; any number of threads may
/// ask it.
class MeshTexels {
public:
    /// Of a picture, in pixels: so far places are found without rounding.
    static constexpr int kLongestSide = 32768;

    /// @param meshes         outlive it
    /// @param width, height  of the tile's picture, in pixels, up to `kLongestSide`
    MeshTexels(std::vector<UVMesh> meshes, const UVTile& tile, int width, int height);

    /// Whether no triangle lies on or near an area.
    bool IsEmpty(const TexelArea& area) const { return TrianglesIn(area).empty(); }

    /// Finds what lies under the same place of each pixel of an area.
    /// @param right, down  in the pixel from its upper left, 0 to below 1
    /// @param texels       row by row from the top, one a pixel
    void Find(const TexelArea& area, double right, double down, std::vector<Texel>& texels) const;

private:
    /// Squares of the picture, and in each the triangles that lie on it or on squares beside it. A triangle is at
    /// the finest level where it lies on two by two squares at most.
    struct Level {
        int shift; ///< squares have 2^shift pixels a side
        int columns;
        std::vector<size_t> starts; // of the squares, row by row, and the end
        std::vector<unsigned> triangles;
    };
    /// The squares of a level that a triangle lies on; both ends are in it.
    struct Squares {
        size_t level;
        int left;
        int top;
        int right;
        int bottom;
    };

    std::vector<UVMesh> fMeshes;
    std::vector<unsigned> fStarts; // by mesh, the number of its first triangle among all
    double fOriginX;               // of the tile's lower left corner
    double fTopY;
    int fWidth;
    int fHeight;
    std::vector<Level> fLevels;

    struct Rasterizer;
    size_t MeshOf(unsigned triangle) const;
    UVTriangle Placed(unsigned triangle) const;
    std::optional<TexelArea> AreaOf(const UVTriangle& triangle) const;
    std::optional<Squares> SquaresOf(const UVMesh& mesh, size_t triangle) const;
    template <class Visit> void ForEachSquare(const Visit& visit) const;
    void FillLevels();
    std::vector<unsigned> TrianglesIn(const TexelArea& area) const;
};

} // namespace fernwick
