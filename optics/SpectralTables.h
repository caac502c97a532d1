#pragma once
#include <array>

inline constexpr int kSpectralEntries = 512;

/// A quantity along the spectrum: entry i belongs to 380 + i * 445 / 511 nm, so the ends are 380 and 825 nm.
using SpectralTable = std::array<float, kSpectralEntries>;

namespace SpectralTables {

/// Colour matching functions of the CIE 1931 2-degree observer, as modified by Judd (1951) and Vos (1978).
extern const SpectralTable XBar;
extern const SpectralTable YBar;
extern const SpectralTable ZBar;

/// Relative power of CIE standard illuminant D65, 1 at 555 nm.
extern const SpectralTable D65Array;

} // namespace SpectralTables
