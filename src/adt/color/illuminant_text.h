#pragma once

// The text file of a custom light:
//
//     CMS_ILLUMINANT_CUSTOM
//     colour temperature
//     first wavelength, last wavelength, step, number of samples: four lines
//     BEGIN_DATA
//     the samples, a line each
//     END_DATA

#include <cstdint>
#include <iosfwd>

#include "kvbase/color/kv_spectrum.h"

namespace kv::detail {

/// No stored spectrum has more samples. Stated counts and grids are held against it before memory is taken.
constexpr std::int32_t kMostSamples = 1000000;

/// Whether a spectrum with this grid and number of samples can be stored: the step is above 0, the grid does
/// not end before it starts, and there are samples, kMostSamples of them at most.
constexpr bool isStorable(std::int32_t start, std::int32_t end, std::int32_t step, std::int32_t count) {
    return step > 0 && end >= start && count > 0 && count <= kMostSamples;
}

/// Reads a spectrum. Numbers that can't be read, and all behind them, are 0. Throws std::runtime_error for a
/// text of another form.
KV_Spectrum readSpectrumText(std::istream &stream);

/// Writes a spectrum, which must be storable.
void writeSpectrumText(std::ostream &stream, float temperature, const KV_Spectrum &spectrum);

}  // namespace kv::detail
