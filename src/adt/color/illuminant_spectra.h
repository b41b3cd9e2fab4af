#pragma once

// The spectra that illuminants are made of. Each function gives a new one.

#include <cstdint>
#include <memory>

#include "kvbase/color/kv_spectrum.h"

namespace kv::detail {

using Spectrum = std::unique_ptr<KV_Spectrum>;

/// The grid on which all is integrated: 360 to 830 nm by 1.
constexpr std::int32_t kFirstNm = 360;
constexpr std::int32_t kLastNm = 830;
constexpr std::int32_t kStandardSamples = kLastNm - kFirstNm + 1;

/// The spectrum at every nm of the standard grid, 0 outside its own range.
Spectrum standardSpectrum(const KV_Spectrum &spectrum);

/// The black body of a temperature in kelvin, by Planck's law in single precision, on the standard grid.
Spectrum blackBodySpectrum(float temperature);
/// The CIE daylight of a temperature in kelvin, limited to 4000 to 25000, on the standard grid. Source:
/// CIE 15.
Spectrum daylightSpectrum(float temperature);
/// 1 at every nm of the standard grid.
Spectrum equalEnergySpectrum();
Spectrum illuminantBSpectrum();
Spectrum illuminantCSpectrum();
/// This system's own lights: on 320 to 830 nm by 1, and D50_Local on 380 to 780 nm by 2.
Spectrum f1Spectrum();
Spectrum f2Spectrum();
Spectrum d50LocalSpectrum();

}  // namespace kv::detail
