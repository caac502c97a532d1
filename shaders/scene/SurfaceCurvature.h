#pragma once
#include "frame/Vectors.h"

/// How a surface bends at a point, from its first and second fundamental forms. Pictures show the Gaussian one
/// only.
struct SurfaceCurvature {
    float fGaussian;
    float fMean;
    float fFirstPrincipal; ///< the larger one; NaN, like the other, where rounding leaves no real root
    float fSecondPrincipal;
};

/// @param derivU  derivative of the position along U
/// @param derivV  derivative of the position along V; parallel to `derivU` it makes all NaN or infinite
/// @param shape   derivative of the normal, row by row
SurfaceCurvature MeasureCurvature(const TVector3& derivU, const TVector3& derivV, const float (&shape)[3][3]);
