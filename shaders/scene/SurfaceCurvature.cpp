#include "shaders/scene/SurfaceCurvature.h"

namespace {

float FloatDot(const TVector3& left, const TVector3& right) { return static_cast<float>(Dot(left, right)); }

/// The cross product in double, rounded to float.
TVector3 Cross(const TVector3& left, const TVector3& right)
{
    const double a[3] = {left[0], left[1], left[2]};
    const double b[3] = {right[0], right[1], right[2]};
    return {static_cast<float>(a[1] * b[2] - a[2] * b[1]), static_cast<float>(a[2] * b[0] - a[0] * b[2]),
        static_cast<float>(a[0] * b[1] - a[1] * b[0])};
}

} // namespace

SurfaceCurvature MeasureCurvature(const TVector3& derivU, const TVector3& derivV, const float (&shape)[3][3])
{
    const float e = FloatDot(derivU, derivU);
    const float f = FloatDot(derivU, derivV);
    const float g = FloatDot(derivV, derivV);

    float negated[3][3];
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            negated[row][column] = -shape[row][column];
    const TVector3 bentU = Transformed(negated, derivU);
    const TVector3 bentV = Transformed(negated, derivV);
    const float l = FloatDot(bentU, derivU);
    const float m = FloatDot(bentV, derivU);
    const float n = FloatDot(bentV, derivV);

    const TVector3 normal = Cross(derivU, derivV);
    const float w = FloatDot(normal, normal);
    const float gaussian = (l * n - m * m) / w;
    const float lg = l * g;
    const float ne = n * e;
    const float mean = static_cast<float>((lg - 2.0 * m * f + ne) / (2.0 * w));
    const float root = std::sqrt(mean * mean - gaussian);
    return {gaussian, mean, mean + root, mean - root};
}
