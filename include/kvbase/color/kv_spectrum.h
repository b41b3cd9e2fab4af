#pragma once

#include <cstdint>
#include <vector>

#include "kvbase/base/export.h"

/// One spectrum, sampled at regular steps of whole nanometres. Owns its samples; copies are full. One thread
/// at a time.
///
/// A grid goes from start by step up to end; a grid whose last step goes beyond end has a sample there, too.
/// The numbers are kept as they are given, also where they contradict each other: a spectrum never reads
/// beyond its count of samples, and a grid with a step below 1 has no values.
class KV_EXPORT KV_Spectrum {
public:
    /// No grid and no samples. Writes a line to the trace when the construction of objects is traced.
    KV_Spectrum();
    /// A grid in nm, with (gridEnd - gridStart) / gridStep + 1 samples of 0, and one more if the division
    /// leaves a remainder; none for a step of 0, or where that number is below 1. Traced as above.
    KV_Spectrum(std::int32_t gridStart, std::int32_t gridEnd, std::int32_t gridStep);
    KV_Spectrum(const KV_Spectrum &other);
    KV_Spectrum(KV_Spectrum &&other) noexcept;
    KV_Spectrum &operator=(const KV_Spectrum &other);
    KV_Spectrum &operator=(KV_Spectrum &&other) noexcept;
    ~KV_Spectrum();

    /// A full copy of source. A source without samples leaves this one without. Null does nothing.
    void MakeCopyOf(KV_Spectrum *source);

    /// Stores the four numbers and copies the samples in the place of the old ones.
    /// samples  how many there are
    /// values   that many floats, which may be the spectrum's own; null, or a number below 1, leaves it
    ///          without samples.
    void SetSpectrum(std::int32_t gridStart, std::int32_t gridEnd, std::int32_t gridStep,
                     std::int32_t samples, float *values);
    /// The same. An empty vector leaves the spectrum without samples; where it has too few floats, the
    /// samples behind them are 0.
    void SetSpectrum(std::int32_t gridStart, std::int32_t gridEnd, std::int32_t gridStep,
                     std::int32_t samples, std::vector<float> &values);

    /// The value at a wavelength in nm, linear between two samples. 0 below start and above end, and where a
    /// sample is missing that the value needs.
    float GetSpectralValueAtWavelength(std::int32_t wavelength) const;

    std::int32_t start = 0;  ///< first wavelength, nm
    std::int32_t end = 0;    ///< last wavelength, nm
    std::int32_t step = 0;   ///< nm
    std::int32_t count = 0;  ///< number of samples
    float *data = nullptr;   ///< the samples, owned, from new float[]; null for none
};
