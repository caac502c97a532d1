#pragma once
#include "frame/Vectors.h"
#include <span>

namespace fernwick {

/// The frame of a normal map at one sample: the tangent along U, the bitangent on V's side, and the normal. Each
/// has unit length and is at right angles to the others, also where the derivatives aren't.
class TangentFrame {
public:
    /// @param derivU, derivV  derivatives of the position, in the same coordinates as `normal`, of any length
    TangentFrame(const TVector3& normal, const TVector3& derivU, const TVector3& derivV);

    /// `vector`, of any length, as a unit vector along the tangent, the bitangent and the normal. A vector
    /// without a direction (zero, infinite, NaN) gives the flat normal (0, 0, 1).
    TVector3 UnitOf(const TVector3& vector) const;

    /// Makes each vector what `UnitOf` gives for it, in less time than one by one.
    void TurnIntoUnits(std::span<TVector3> vectors) const;

private:
    TVector3 fTangent;
    TVector3 fBitangent;
    TVector3 fNormal;
};

/// What a diffuse surface gets of the one lamp of lit pictures and of a little light from everywhere. The lamp
/// shines from the direction (-1, 1, 1) in tangent space, the upper left of the picture. A flat surface gets 1.
/// @param normal  a unit vector in tangent space
float LampLight(const TVector3& normal);

} // namespace fernwick
