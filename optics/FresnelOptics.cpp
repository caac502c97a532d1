#include "optics/FresnelOptics.h"
#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr float kPresetTolerance = 0.01f;
constexpr double kTwiceReference = 1178.6;               // nm, twice the sodium line of 589.3 nm
constexpr double kLastEntry = AngleTables::kEntries - 1; // stands for pi

/// A term of Sellmeier's formula for the square of an index.
struct SellmeierTerm {
    double fStrength;
    double fPole; ///< square micrometres
};
/// Schott BK7 glass, its published coefficients rounded, in the order in which they are added.
constexpr SellmeierTerm kGlass[] = {{1.01047, 103.561}, {0.231792, 0.0200179}, {1.03961, 0.0060007}};

// How the curve of the glass is scaled to a medium: by the reciprocal of a unit of dispersion, and by that times the
// index of the glass at the reference, 1.51673. Both are rounded, so at 589.3 nm an index is close to itself.
constexpr double kGlassScale = 124.113;
constexpr double kGlassOffset = 188.246;

bool IsFront(float angle) { return angle <= kHalfPiInFloat; }

float Fold(float angle) { return IsFront(angle) ? angle : static_cast<float>(kPi - angle); }

Complex FoldAngle(Complex theta) { return {Fold(theta.re), Fold(theta.im)}; }

/// Admittance of a medium times the cosine of the angle in it.
Complex Term(Complex index, Complex divisor, Complex angle) { return index / divisor * Cosine(angle); }

/// Light that meets the boundary at one angle.
struct Crossing {
    Complex fFolded;
    Complex fIndex1, fIndex2;
    Complex fPermeability1, fPermeability2;
    Complex fRefracted;
    Complex fA, fB, fC, fD;

    Crossing(const OpticalInterface& boundary, Complex theta)
        : fFolded(FoldAngle(theta)), fIndex1(boundary.IncidentIndex(theta)),
          fIndex2(boundary.TransmittedIndex(theta)), fPermeability1(boundary.IncidentPermeability(theta)),
          fPermeability2(boundary.TransmittedPermeability(theta)),
          fRefracted(Arcsine(fIndex1 / fIndex2 * Sine(fFolded))), fA(Term(fIndex1, fPermeability1, fFolded)),
          fB(Term(fIndex2, fPermeability2, fRefracted)), fC(Term(fIndex2, fPermeability2, fFolded)),
          fD(Term(fIndex1, fPermeability1, fRefracted))
    { }
};

bool IsNear(float value, float preset) { return std::fabs(value - preset) <= kPresetTolerance; }

template <class Match> int32_t FirstPreset(Match matches)
{
    const auto row = std::find_if(std::begin(kOpticalPresets), std::end(kOpticalPresets), matches);
    return static_cast<int32_t>(row - std::begin(kOpticalPresets));
}

template <class Shares>
void FillTables(float (&tableS)[AngleTables::kEntries], float (&tableP)[AngleTables::kEntries],
    const OpticalInterface& boundary, Shares shares)
{
    for (int32_t i = 0; i < AngleTables::kEntries; ++i) {
        const float theta = static_cast<float>(i * kPi / kLastEntry);
        const PolarizedShares share = shares(boundary, Complex{theta, 0});
        tableS[i] = share.fS;
        tableP[i] = share.fP;
    }
}

/// The four tables as one run.
class TableRun {
public:
    TableRun(const AngleTables& tables, int32_t firstTable)
        : fTables{tables.fReflectanceP, tables.fReflectanceS, tables.fTransmittanceP, tables.fTransmittanceS},
          fStart(firstTable * AngleTables::kEntries)
    { }
    /// Past the end of the run gives its last entry, below 0 (the index of a NaN) entry 0.
    float operator[](int32_t entry) const
    {
        const int32_t place = std::min(fStart + std::max(entry, 0), 4 * AngleTables::kEntries - 1);
        return fTables[place / AngleTables::kEntries][place % AngleTables::kEntries];
    }

private:
    const float* fTables[4];
    int32_t fStart;
};

/// Index of the entry at or below a place in the run. A place too far for any table stays past its end.
int32_t EntryBelow(double place)
{
    constexpr double kPastEnd = 4 * AngleTables::kEntries;
    return CutToInt32(std::floor(place > kPastEnd ? kPastEnd : place));
}

} // namespace

Complex OpticalInterface::IncidentIndex(Complex theta) const
{
    return {IsFront(theta.re) ? fIndex1.re : fIndex2.re, IsFront(theta.im) ? fIndex1.im : fIndex2.im};
}

Complex OpticalInterface::TransmittedIndex(Complex theta) const
{
    return {IsFront(theta.re) ? fIndex2.re : fIndex1.re, IsFront(theta.im) ? fIndex2.im : fIndex1.im};
}

Complex OpticalInterface::IncidentPermeability(Complex theta) const
{
    return {IsFront(theta.re) ? fPermeability1 : fPermeability2, 0};
}

Complex OpticalInterface::TransmittedPermeability(Complex theta) const
{
    return {IsFront(theta.re) ? fPermeability2 : fPermeability1, 0};
}

PolarizedShares Reflectance(const OpticalInterface& boundary, Complex theta)
{
    const Crossing at(boundary, theta);
    const Complex rs = (at.fA - at.fB) / (at.fA + at.fB);
    const Complex rp = (at.fC - at.fD) / (at.fC + at.fD);
    return {SquaredMagnitude(rs).re, SquaredMagnitude(rp).re};
}

PolarizedShares Transmittance(const OpticalInterface& boundary, Complex theta)
{
    const Crossing at(boundary, theta);
    const Complex N = Term(Complex{2, 0} * at.fIndex1, at.fPermeability1, at.fFolded);
    const Complex ts = N / (at.fA + at.fB);
    const Complex tp = N / (at.fC + at.fD);
    // kept: no permeability in this factor
    const Complex F = Term(at.fIndex2, at.fIndex1, at.fRefracted) / Cosine(at.fFolded);
    return {(SquaredMagnitude(ts) * F).re, (SquaredMagnitude(tp) * F).re};
}

float DispersedIndex(float wavelength, float index, float dispersion)
{
    const float square = wavelength * wavelength;
    const float L = static_cast<float>(square / 1e6); // square micrometres
    double squaredIndex = 1;
    for (const auto& [strength, pole] : kGlass)
        squaredIndex += strength * L / (L - pole);
    const float s = static_cast<float>(std::sqrt(squaredIndex));
    const double n = index;
    const double d = dispersion;
    return static_cast<float>(
        -kGlassOffset * d * n + kGlassScale * d * n * s + kGlassOffset * d - kGlassScale * d * s + n);
}

DerivedOptics DeriveOptics(const OpticalMedium& medium1, const OpticalMedium& medium2, float wavelength,
    uint32_t mode, AngleTables& tables)
{
    DerivedOptics derived;
    derived.fIndex2ReAtWavelength = DispersedIndex(wavelength, medium2.fIndexRe, medium2.fDispersion);
    // The wavelength is mirrored about the reference, so the imaginary part moves the other way.
    const float mirrored = static_cast<float>(kTwiceReference - wavelength);
    derived.fIndex2ImAtWavelength = DispersedIndex(
        mirrored, medium2.fIndexIm, medium2.fIndexIm / medium2.fIndexRe * medium2.fDispersion);

    const auto isLike = [](const OpticalMedium& medium, const OpticalMedium& row) {
        return IsNear(medium.fIndexRe, row.fIndexRe) && IsNear(medium.fIndexIm, row.fIndexIm)
            && IsNear(medium.fPermeability, row.fPermeability);
    };
    derived.fPreset1 = FirstPreset([&](const OpticalMedium& row) { return isLike(medium1, row); });
    derived.fPreset2 = FirstPreset([&](const OpticalMedium& row) {
        return isLike(medium2, row) && IsNear(medium2.fDispersion, row.fDispersion);
    });

    const OpticalInterface boundary = {{medium1.fIndexRe, medium1.fIndexIm},
        {derived.fIndex2ReAtWavelength, derived.fIndex2ImAtWavelength}, medium1.fPermeability,
        medium2.fPermeability};
    if (mode == kTransmittanceMode)
        FillTables(tables.fTransmittanceS, tables.fTransmittanceP, boundary, Transmittance);
    if (mode == kReflectanceMode)
        FillTables(tables.fReflectanceS, tables.fReflectanceP, boundary, Reflectance);
    return derived;
}

float FresnelLookup(const AngleTables& tables, uint32_t mode, float polarization, float angle)
{
    if (mode != kTransmittanceMode && mode != kReflectanceMode)
        return 0;
    const int32_t pair = mode == kTransmittanceMode ? 2 : 0;
    const TableRun P(tables, pair);
    const TableRun S(tables, pair + 1);

    const double place = angle * kLastEntry / kPi;
    const int32_t i = EntryBelow(place);
    const int32_t j = i + 1 < AngleTables::kEntries ? i + 1 : i;
    const float f = static_cast<float>(place);
    const float fraction = f - static_cast<float>(i);
    const float p = P[i] + (P[j] - P[i]) * fraction;
    const float s = S[i] + (S[j] - S[i]) * fraction;

    const float percentP = 100 - polarization;
    const double shareP = percentP / 100.0;
    const double shareS = polarization / 100.0;
    const float value = static_cast<float>(shareP * p + shareS * s);
    if (value >= 0 && value <= 1)
        return value;

    const int32_t k = EntryBelow(static_cast<double>(f) + 0.5); // the nearest entry
    return static_cast<float>(shareP * P[k] + shareS * S[k]);
}
