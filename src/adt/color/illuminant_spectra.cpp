#include "illuminant_spectra.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>

#include "tables/cie_daylight.h"
#include "tables/cie_illuminants_b_c.h"
#include "tables/own_lights.h"

namespace kv::detail {

namespace {

constexpr std::int32_t kFFirstNm = 320;  // of F1 and F2
constexpr std::int32_t kFTensFirstNm = 380;
constexpr std::int32_t kD50LocalFirstNm = 380;
constexpr std::int32_t kD50LocalStep = 2;

using FSamples = std::array<float, kLastNm - kFFirstNm + 1>;

/// The value at a whole ten of F1 or F2, 0 outside the table.
template <std::size_t N>
constexpr double atTen(const double (&tens)[N], std::int32_t wavelength) {
    const std::int32_t i = (wavelength - kFTensFirstNm) / 10;
    return wavelength >= kFTensFirstNm && i < static_cast<std::int32_t>(N) ? tens[i] : 0;
}

/// F1 or F2 at each nm: linear between whole tens.
template <std::size_t N>
constexpr FSamples betweenTens(const double (&tens)[N]) {
    FSamples samples{};
    std::int32_t wavelength = kFFirstNm;
    for (float &sample : samples) {
        const std::int32_t rest = wavelength % 10;
        const double below = atTen(tens, wavelength - rest);
        const double above = atTen(tens, wavelength - rest + 10);
        sample = static_cast<float>(((10 - rest) * below + rest * above) / 10);
        ++wavelength;
    }
    return samples;
}

constexpr FSamples kF1 = betweenTens(kF1AtTens);
constexpr FSamples kF2 = betweenTens(kF2AtTens);

Spectrum emptySpectrum() { return std::make_unique<KV_Spectrum>(kFirstNm, kLastNm, 1); }

/// A spectrum of a table's values from start on.
template <class Table>
Spectrum tabulated(std::int32_t start, std::int32_t step, const Table &values) {
    const auto steps = static_cast<std::int32_t>(std::size(values)) - 1;
    auto spectrum = std::make_unique<KV_Spectrum>(start, start + steps * step, step);
    std::copy(std::begin(values), std::end(values), spectrum->data);
    return spectrum;
}

/// The weights of the second and the third component of daylight.
struct DaylightWeights {
    float M1, M2;
};

// Single precision but for the powers and what they go into. Names as in CIE 15, equations of section 4.1.2.
DaylightWeights daylightWeights(float temperature) {
    const float t = temperature / 1000;
    const double t2 = std::pow(static_cast<double>(t), 2);
    const double t3 = std::pow(static_cast<double>(t), 3);
    const auto x = static_cast<float>(t <= 7 ? 2.9678F / t2 - 4.607F / t3 + 0.09911F / t + 0.244063F
                                             : 1.9018F / t2 - 2.0064F / t3 + 0.24748F / t + 0.23704F);
    const float y = x * 2.87F - 3 * x * x - 0.275F;
    const float m = x * 0.2562F + 0.0241F - y * 0.7341F;
    return {(-1.3515F - x * 1.7703F + y * 5.9114F) / m, (0.03F - x * 31.4424F + y * 30.0717F) / m};
}

/// A component of daylight k nm above row i of its table, linear to row i + 1.
float between(const float (&component)[48], int i, int k) {
    return (static_cast<float>(10 - k) * component[i] + static_cast<float>(k) * component[i + 1]) * 0.1F;
}

}  // namespace

Spectrum standardSpectrum(const KV_Spectrum &spectrum) {
    Spectrum standard = emptySpectrum();
    for (std::int32_t i = 0; i < kStandardSamples; ++i)
        standard->data[i] = spectrum.GetSpectralValueAtWavelength(kFirstNm + i);
    return standard;
}

Spectrum blackBodySpectrum(float temperature) {
    Spectrum spectrum = emptySpectrum();
    const float k = temperature / 1000000 * 1.380662F;
    for (std::int32_t i = 0; i < kStandardSamples; ++i) {
        const auto w = static_cast<float>(kFirstNm + i);
        spectrum->data[i] =
            499.25632F / std::pow(w / 100, 5.0F) * 10000 / (std::pow(2.71828F, 19.864775F / (k * w)) - 1);
    }
    return spectrum;
}

Spectrum daylightSpectrum(float temperature) {
    const DaylightWeights weights = daylightWeights(std::clamp(temperature, 4000.0F, 25000.0F));
    Spectrum spectrum = emptySpectrum();
    float *sample = spectrum->data;
    *sample++ = kDaylightS0[0] + weights.M1 * kDaylightS1[0] + weights.M2 * kDaylightS2[0];
    for (int i = 0; i + 1 < static_cast<int>(std::size(kDaylightS0)); ++i) {
        // Up to the next row, included: a value of the table takes this way, too.
        for (int k = 1; k <= 10; ++k) {
            *sample++ = between(kDaylightS0, i, k) + weights.M1 * between(kDaylightS1, i, k) +
                        weights.M2 * between(kDaylightS2, i, k);
        }
    }
    return spectrum;
}

Spectrum equalEnergySpectrum() {
    Spectrum spectrum = emptySpectrum();
    std::fill_n(spectrum->data, spectrum->count, 1.0F);
    return spectrum;
}

Spectrum illuminantBSpectrum() { return tabulated(kFirstNm, 1, kIlluminantB); }
Spectrum illuminantCSpectrum() { return tabulated(kFirstNm, 1, kIlluminantC); }
Spectrum f1Spectrum() { return tabulated(kFFirstNm, 1, kF1); }
Spectrum f2Spectrum() { return tabulated(kFFirstNm, 1, kF2); }
Spectrum d50LocalSpectrum() { return tabulated(kD50LocalFirstNm, kD50LocalStep, kD50Local); }

}  // namespace kv::detail
