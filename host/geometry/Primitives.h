#pragma once
#include "host/geometry/Geometry.h"
#include <memory>

namespace fernwick {

// Shapes with exact points, derivatives and curvature. Each lies around its element's origin and is covered once
// by U and V from 0 to 1; the derivative along U crossed with that along V points to the outer side, which is
// that of +Z at U = V = 0.5 but for the torus. All lengths are scene units and above 0.

/// Poles on the Y axis; U runs around it, V from the lower pole up.
std::shared_ptr<const Geometry> MakeSphere(float radius);

/// Around the Z axis. U runs along the ring, V around the tube; V = 0.5 is the outer equator.
/// @param ringRadius  of the ring that the tube's centre follows; above `tubeRadius`
std::shared_ptr<const Geometry> MakeTorus(float ringRadius, float tubeRadius);

/// z = height ((2 x / width)^2 - (2 y / width)^2) over a square of the XY plane; U along X, V along Y.
/// @param width   edge of the square
/// @param height  of the middles of the two edges across X; those across Y lie as deep. 0 makes it flat
std::shared_ptr<const Geometry> MakeSaddle(float width, float height);

/// A rectangle of the XY plane; U along X, V along Y, the normal along Z.
std::shared_ptr<const Geometry> MakePlane(float width, float height);

} // namespace fernwick
