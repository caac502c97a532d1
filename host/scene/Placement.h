#pragma once
#include "frame/Vectors.h"

namespace fernwick {

// Places are rigid: a rotation and a translation. Sums run in double and are rounded once.

/// The rotation about X, then Y, then Z.
/// @param degrees  one angle an axis
TTransform3D RotatedBy(const TVector3& degrees);

/// The rotation that turns (0, 0, -1) towards `direction` and keeps Y up as far as it can. A zero vector gives
/// none; one along Y has Z up instead.
TTransform3D FacingTo(const TVector3& direction);

/// The place of something that lies at `inner` within `outer`.
TTransform3D Composed(const TTransform3D& outer, const TTransform3D& inner);

/// The place that undoes `place`.
TTransform3D Inverse(const TTransform3D& place);

TVector3 Turned(const TTransform3D& place, const TVector3& direction);
TVector3 Placed(const TTransform3D& place, const TVector3& point);

} // namespace fernwick
