#pragma once
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

/// The centre of a band, from degrees to radians in double, rounded to float.
float BandCenter(float degrees);

/// The weight of a band at `angle` radians: 1 at its centre, falling by `width` per radian to 0.
/// @param center  degrees
float BandWeight(float angle, float center, float width);
