#pragma once
#include "host/geometry/Mesh.h"
#include <algorithm>
#include <optional>

namespace fernwick {

/// A mesh that is laid out on pictures by one of its UV sets.
struct UVMesh {
    const MeshDescription* fMesh;
    size_t fSet = 0; ///< below its `UVSetCount`
};

/// The unit square of the UV plane from (column, row) on: one picture of a layout over several.
struct UVTile {
    static constexpr int kColumns = 10; ///< that numbers are given to
    static constexpr int kRows = 900;

    int fColumn = 0;
    int fRow = 0;

    /// 1001 for the unit square, one more a column and ten more a row.
    int Number() const { return 1001 + fColumn + kColumns * fRow; }
    bool operator==(const UVTile&) const = default;
};

/// How meshes lie on the UV plane.
struct UVSurvey {
    size_t fTriangles = 0;
    size_t fMirrored = 0; ///< of these, the ones whose U and V run as on the back of the picture
    size_t fFlat = 0;     ///< without area in UV, or with UV that are no numbers; they cover nothing
    size_t fOutside = 0;  ///< that reach beyond the numbered tiles; what lies there is on no picture
    std::vector<UVTile> fTiles = {}; ///< in which a triangle has a place for a texel, by number
};

/// @param width, height  of a tile's picture, in pixels
UVSurvey SurveyUVs(const std::vector<UVMesh>& meshes, int width, int height);

/// The corners of a triangle on the UV plane in pixels, V up. They lie on a grid of 1/2^26 pixel, on which the
/// differences of any two places up to 2^25 pixels from the origin are exact. Vertices are rounded to it each by
/// itself, which moves none of U or V from 2^-18 on in a picture of up to 32768 pixels: triangles that share an edge
/// go on sharing it.
struct UVTriangle {
    double fX[3];
    double fY[3];

    /// Nothing for a triangle without area, or with UV that are NaN or beyond 1000.
    static std::optional<UVTriangle> Find(const UVMesh& mesh, size_t triangle, int width, int height);

    bool IsMirrored() const;
    double Least(const double (&values)[3]) const { return std::min({values[0], values[1], values[2]}); }
    double Most(const double (&values)[3]) const { return std::max({values[0], values[1], values[2]}); }
};

/// On the grid of `UVTriangle`.
double OnUVGrid(double pixels);

/// The exact sign of the turn from the edge towards a place, all on the grid: 1 where it lies to the left of the
/// edge, -1 to the right, 0 on the line.
int SideOf(double fromX, double fromY, double toX, double toY, double x, double y);

} // namespace fernwick
