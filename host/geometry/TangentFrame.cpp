#include "host/geometry/TangentFrame.h"
#include "host/geometry/Cross.h"
#include <algorithm>

namespace fernwick {

namespace {

/// Leaves of `vector` what is at right angles to the unit vector `axis`, in unit length.
TVector3 UnitBeside(const TVector3& axis, TVector3 vector)
{
    TVector3 along = axis;
    along *= static_cast<float>(Dot(axis, vector));
    vector -= along;
    Normalize(vector);
    return vector;
}

} // namespace

TangentFrame::TangentFrame(const TVector3& normal, const TVector3& derivU, const TVector3& derivV)
    : fNormal(normal)
{
    Normalize(fNormal);
    fTangent = UnitBeside(fNormal, derivU);
    fBitangent = Cross(fNormal, fTangent);
    if (Dot(fBitangent, derivV) < 0) // a mirrored U or V
        fBitangent = -fBitangent;
}

TVector3 TangentFrame::UnitOf(const TVector3& vector) const
{
    const double x = Dot(fTangent, vector);
    const double y = Dot(fBitangent, vector);
    const double z = Dot(fNormal, vector);
    const double length = std::sqrt(x * x + y * y + z * z);
    if (!(length > 0) || !std::isfinite(length))
        return {0, 0, 1};
    return {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

float LampLight(const TVector3& normal)
{
    static constexpr TVector3 kTowardLamp(-0.57735027f, 0.57735027f, 0.57735027f);
    constexpr float kAmbient = 0.2f;
    const float flat = kTowardLamp[2];
    const float share = static_cast<float>(std::max(Dot(normal, kTowardLamp), 0.0)) / flat;
    return kAmbient + (1 - kAmbient) * share;
}

} // namespace fernwick
