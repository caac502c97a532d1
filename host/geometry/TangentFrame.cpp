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
    TVector3 unit = vector;
    TurnIntoUnits({&unit, 1});
    return unit;
}

void TangentFrame::TurnIntoUnits(std::span<TVector3> vectors) const
{
    constexpr size_t kMost = 32; // at a time
    double x[kMost];
    double y[kMost];
    double z[kMost];
    double length[kMost];
    for (; !vectors.empty(); vectors = vectors.subspan(std::min(kMost, vectors.size()))) {
        const size_t count = std::min(kMost, vectors.size());
        for (size_t i = 0; i < count; ++i) {
            x[i] = Dot(fTangent, vectors[i]);
            y[i] = Dot(fBitangent, vectors[i]);
            z[i] = Dot(fNormal, vectors[i]);
        }
        for (size_t i = 0; i < count; ++i) { // without a branch, for several at a time
            length[i] = std::sqrt(x[i] * x[i] + y[i] * y[i] + z[i] * z[i]);
            x[i] /= length[i];
            y[i] /= length[i];
            z[i] /= length[i];
        }
        for (size_t i = 0; i < count; ++i)
            vectors[i] = length[i] > 0 && std::isfinite(length[i])
                ? TVector3(static_cast<float>(x[i]), static_cast<float>(y[i]), static_cast<float>(z[i]))
                : TVector3(0, 0, 1);
    }
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
