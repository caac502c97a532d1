#pragma once
#include "optics/ColorSystem.h"
#include <array>
#include <cstdint>

/// What a search shares with its owner. Nothing here is cleared by a search itself.
struct GamutSearch {
    bool fFound = false;  ///< set by a hit; a set flag ends all further work
    bool fMissed = false; ///< set when the boxes of a leaf overlap and neither of its triangles is hit
    bool fSkipBottomFace = false; ///< leaves out face 4
    int32_t fCellCount = 0;       ///< cells created
};

/// A straight line in L*a*b* and a face of the RGB cube.
struct GamutQuery {
    Float3 LabP1; ///< the colour to bring into gamut
    Float3 LabP2; ///< the anchor
    Float3 x3;    ///< XYZ of the face's origin
    Float3 x4;    ///< XYZ of the end of its u edge
    Float3 x5;    ///< XYZ of the end of its v edge
    Float3 Ref;   ///< XYZ of the white of L*a*b*
};

/// Marks a cached value of a cell that is not yet computed; no L*, a* or b* takes it.
inline constexpr float kUnset = 4096;
inline constexpr Float3 kUnsetLab = {kUnset, kUnset, kUnset};

/// A box of the line parameter t and the face parameters u and v. The caches hold L*, a*, b*.
struct GamutCell {
    int32_t fHit = 0; ///< 1 if the boxes of line and face overlap
    float fTMin = 0, fTMax = 1;
    float fUMin = 0, fUMax = 1;
    float fVMin = 0, fVMax = 1;
    Float3 fLine0 = kUnsetLab;        ///< the line at fTMin
    Float3 fLine1 = kUnsetLab;        ///< the line at fTMax
    Float3 fCornerMinMin = kUnsetLab; ///< the face at fUMin, fVMin
    Float3 fCornerMinMax = kUnsetLab; ///< the face at fUMin, fVMax
    Float3 fCornerMaxMin = kUnsetLab; ///< the face at fUMax, fVMin
    Float3 fCornerMaxMax = kUnsetLab; ///< the face at fUMax, fVMax
    int32_t fLevel = 0;               ///< subdivisions still allowed; 0 marks a leaf
    int32_t fFace = 0;                ///< 1 to 6
};

/// The point found. Without one, all is 0 but the face.
struct Residue {
    float t = 0, u = 0, v = 0;
    int32_t fFace = 0;
    Float3 fLab = {};
};

/// Where x1 + t (x2 - x1) = q1 + alpha (q2 - q1) + beta (q3 - q1). A line parallel to the plane gives
/// infinite or undefined numbers.
struct LineHit {
    Float3 fPoint;
    float t, alpha, beta;
};
LineHit IntersectLineTriangle(
    const Float3& x1, const Float3& x2, const Float3& q1, const Float3& q2, const Float3& q3);

/// The cell with its caches filled and `fHit` set.
GamutCell TestCell(GamutCell cell, const GamutQuery& query);

/// The eight halves of a cell. Child 4a + 2b + c has the high half of t, u, v where a, b, c is 1.
std::array<GamutCell, 8> SplitCell(const GamutCell& cell, GamutSearch& search);

Residue SearchCell(const GamutCell& cell, const GamutQuery& query, GamutSearch& search);

/// A crossing of the gamut of `system` by the line from a colour (XYZ) to an anchor of `factor` times its L*
/// and the given a* and b*. Faces are searched in their order, their ranges halved `depth` times (7 in use).
/// Without a crossing, as for most colours inside the gamut, the result is black on face 1 and `fFound` stays
/// clear. The caller clears `fFound` before.
Residue ProjectToGamut(const ColorSystem& system, const Float3& color, float factor, float anchorA,
    float anchorB, int32_t depth, GamutSearch& search);

/// Linear R, G, B of a point on a face of the cube.
Float3 FaceColor(const Residue& residue);
