#pragma once
#include "frame/Colors.h"
#include "frame/Vectors.h"

// What the shaders that colour by an angle share: a fixed direction given by two angles, and triangle weights
// around the centre of a band.

/// A rotation about one axis, with what it was made of.
struct AxisRotation {
    float fMatrix[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}; ///< row by row
    float fCosine = 1;
    float fSine = 0;

    /// Cosine and sine are taken in double and rounded to float. Angles are degrees.
    void SetAboutY(float degrees);
    void SetAboutZ(float degrees);

    /// The row vector `vector` times the matrix, in float.
    TVector3 Apply(const TVector3& vector) const;
};

/// The direction (0.5, 0, 0), turned about Y and then about Z, and normalised: the unit vector
/// (cos e cos a, -cos e sin a, sin e) of an elevation e and an azimuth a in degrees.
TVector3 DirectionFromAngles(float elevation, float azimuth, AxisRotation& scratch);

/// A band of a table: its colour and the triangle that it weighs.
struct AngleBand {
    TMCColorRGBA fColor = {0, 0, 0, 0}; ///< the alpha isn't used
    float fCenter = 0;                  ///< degrees
    float fWidth = 3;                   ///< what the weight loses per radian away from the centre
};
static_assert(offsetof(AngleBand, fColor) == 0 && offsetof(AngleBand, fCenter) == 16);
static_assert(offsetof(AngleBand, fWidth) == 20 && sizeof(AngleBand) == 24);

constexpr int kAngleBandCount = 7;

/// Compares all but the alphas, the floats exactly.
bool SameBands(const AngleBand (&left)[kAngleBandCount], const AngleBand (&right)[kAngleBandCount]);

/// Weighs each band at `angle` radians.
/// @param sharedWidth  all bands use the width of the first
/// @param holdLast     from the last band's centre upward that band weighs 1
void WeighBands(const AngleBand (&bands)[kAngleBandCount], bool sharedWidth, bool holdLast, float angle,
    float (&weights)[kAngleBandCount]);

/// The sum of the weighted colours, not clamped.
TMCColorRGB SumBands(const AngleBand (&bands)[kAngleBandCount], const float (&weights)[kAngleBandCount]);
