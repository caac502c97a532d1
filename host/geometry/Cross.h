#pragma once
#include "frame/Vectors.h"

namespace fernwick {

/// The cross product, in float.
inline TVector3 Cross(const TVector3& left, const TVector3& right)
{
    return {left[1] * right[2] - left[2] * right[1], left[2] * right[0] - left[0] * right[2],
        left[0] * right[1] - left[1] * right[0]};
}

} // namespace fernwick
