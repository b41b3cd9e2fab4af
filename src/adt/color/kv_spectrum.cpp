#include "kvbase/color/kv_spectrum.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <utility>

#include "runtime/trace_line.h"
#include "spectrum_grid.h"

namespace {

/// count samples of 0; null for a count below 1.
float *newSamples(std::int32_t count) {
    return count > 0 ? new float[static_cast<std::size_t>(count)]() : nullptr;
}

float *copyOf(const float *values, std::int32_t count) {
    if (values == nullptr) return nullptr;
    float *copy = newSamples(count);
    if (copy != nullptr) std::copy_n(values, count, copy);
    return copy;
}

}  // namespace

KV_Spectrum::KV_Spectrum() {
    kv::detail::traceLine(kv::detail::kTraceConstruct, "Constructing KV_Spectrum()");
}

KV_Spectrum::KV_Spectrum(std::int32_t gridStart, std::int32_t gridEnd, std::int32_t gridStep)
    : start(gridStart), end(gridEnd), step(gridStep) {
    kv::detail::traceLine(kv::detail::kTraceConstruct, "Constructing KV_Spectrum()");
    const std::int64_t samples = kv::detail::gridSamples(start, end, step);
    if (samples > std::numeric_limits<std::int32_t>::max()) throw std::bad_array_new_length();
    count = static_cast<std::int32_t>(samples);
    data = newSamples(count);
}

KV_Spectrum::KV_Spectrum(const KV_Spectrum &other)
    : start(other.start),
      end(other.end),
      step(other.step),
      count(other.count),
      data(copyOf(other.data, other.count)) {}

KV_Spectrum::KV_Spectrum(KV_Spectrum &&other) noexcept
    : start(other.start),
      end(other.end),
      step(other.step),
      count(std::exchange(other.count, 0)),
      data(std::exchange(other.data, nullptr)) {}

KV_Spectrum &KV_Spectrum::operator=(const KV_Spectrum &other) {
    if (this != &other) SetSpectrum(other.start, other.end, other.step, other.count, other.data);
    return *this;
}

KV_Spectrum &KV_Spectrum::operator=(KV_Spectrum &&other) noexcept {
    start = other.start;
    end = other.end;
    step = other.step;
    std::swap(count, other.count);
    std::swap(data, other.data);
    return *this;
}

KV_Spectrum::~KV_Spectrum() { delete[] data; }

void KV_Spectrum::MakeCopyOf(KV_Spectrum *source) {
    if (source != nullptr) *this = *source;
}

void KV_Spectrum::SetSpectrum(std::int32_t gridStart, std::int32_t gridEnd, std::int32_t gridStep,
                              std::int32_t samples, float *values) {
    float *copy = copyOf(values, samples);
    start = gridStart;
    end = gridEnd;
    step = gridStep;
    count = samples;
    delete[] data;
    data = copy;
}

void KV_Spectrum::SetSpectrum(std::int32_t gridStart, std::int32_t gridEnd, std::int32_t gridStep,
                              std::int32_t samples, std::vector<float> &values) {
    float *copy = values.empty() ? nullptr : newSamples(samples);
    if (copy != nullptr)
        std::copy_n(values.begin(), std::min(values.size(), static_cast<std::size_t>(samples)), copy);
    SetSpectrum(gridStart, gridEnd, gridStep, samples, nullptr);
    data = copy;
}

float KV_Spectrum::GetSpectralValueAtWavelength(std::int32_t wavelength) const {
    if (wavelength < start || wavelength > end || step < 1 || data == nullptr) return 0;
    // The distance can be beyond 31 bits.
    const std::uint32_t distance = static_cast<std::uint32_t>(wavelength) - static_cast<std::uint32_t>(start);
    const std::uint32_t i = distance / static_cast<std::uint32_t>(step);
    const std::uint32_t rest = distance % static_cast<std::uint32_t>(step);
    const std::uint32_t needed = rest == 0 ? i : i + 1;
    if (count < 1 || needed >= static_cast<std::uint32_t>(count)) return 0;
    if (rest == 0) return data[i];
    return (data[i + 1] - data[i]) * static_cast<float>(rest) / static_cast<float>(step) + data[i];
}
