#pragma once
#include "frame/Numbers.h"
#include "optics/Complex.h"
#include "optics/OpticalPresets.h"
#include <cstdint>

inline constexpr uint32_t kReflectanceMode = static_cast<uint32_t>(Code("RSel"));
inline constexpr uint32_t kTransmittanceMode = static_cast<uint32_t>(Code("TSel"));

/// Two media and the plane between them, at one wavelength. The normal points into medium 1. Angles are
/// measured from the normal, 0 to pi.
struct OpticalInterface {
    Complex fIndex1;
    Complex fIndex2;
    float fPermeability1;
    float fPermeability2;

    // Above pi/2 the media change places, each component of the angle deciding for its own component of the
    // index. kept: a real angle swaps the real parts alone.
    Complex IncidentIndex(Complex theta) const;
    Complex TransmittedIndex(Complex theta) const;
    Complex IncidentPermeability(Complex theta) const;
    Complex TransmittedPermeability(Complex theta) const;
};

/// Shares of the power of s- and of p-polarised light.
struct PolarizedShares {
    float fS;
    float fP;
};
PolarizedShares Reflectance(const OpticalInterface& boundary, Complex theta);
PolarizedShares Transmittance(const OpticalInterface& boundary, Complex theta);

/// Index at a wavelength in nanometres: the dispersion curve of Schott BK7 glass, shifted to pass through
/// `index` near 589.3 nm and scaled by `dispersion` and by the excess of the index over 1.
float DispersedIndex(float wavelength, float index, float dispersion);

/// Shares by angle. Entry i of a table belongs to i * pi / 1023; entry 511 is the last one below pi/2.
struct AngleTables {
    static constexpr int32_t kEntries = 1024;

    float fReflectanceP[kEntries] = {};
    float fReflectanceS[kEntries] = {};
    float fTransmittanceP[kEntries] = {};
    float fTransmittanceS[kEntries] = {};
};

/// What DeriveOptics finds out about two media besides the tables.
struct DerivedOptics {
    float fIndex2ReAtWavelength;
    float fIndex2ImAtWavelength;
    int32_t fPreset1; ///< row of kOpticalPresets like medium 1, its dispersion aside, or kNoPreset
    int32_t fPreset2; ///< row of kOpticalPresets like medium 2, or kNoPreset
};

/// Disperses medium 2 to `wavelength` (nm) and fills the two tables of `mode`; the others stay as they are.
DerivedOptics DeriveOptics(const OpticalMedium& medium1, const OpticalMedium& medium2, float wavelength,
    uint32_t mode, AngleTables& tables);

/// Share at an angle in radians, between table entries along a straight line. `polarization` is the per cent
/// of s-polarised light. The result may leave 0 to 1. 0 for an unknown mode. Past pi the lookup reads on into
/// the next table, and past the last one its last entry.
float FresnelLookup(const AngleTables& tables, uint32_t mode, float polarization, float angle);
