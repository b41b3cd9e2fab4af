#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kvbase/base/export.h"
#include "kvbase/color/kv_color_space.h"
#include "kvbase/color/kv_illuminant.h"

/// What there is to know about colours of one space: the space with its number of channels, a grid of
/// wavelengths for spectra, and the light. One thread at a time. Raises nothing but for the lack of memory.
class KV_EXPORT KV_ColorSpaceInfo {
public:
    /// LAB with 3 channels, 380 to 730 nm by 10, D50 under the 2 degree observer.
    KV_ColorSpaceInfo();
    /// The same, then as SetColorSpace.
    KV_ColorSpaceInfo(const KV_ColorSpace &space, std::int32_t start, std::int32_t end, std::int32_t step);
    /// Copies have a light of their own: the standard one of the source's kind and observer, to which the
    /// source's is assigned. Two lists of texts and one of numbers, which nothing here reads, go along.
    KV_ColorSpaceInfo(const KV_ColorSpaceInfo &other);
    KV_ColorSpaceInfo &operator=(const KV_ColorSpaceInfo &other);
    ~KV_ColorSpaceInfo();

    KV_ColorSpace GetColorSpace() const { return m_colorSpace; }
    /// The number of channels.
    std::uint32_t GetColorSpaceDimension() const { return m_dimension; }
    /// The light, never null. It stays this object's, until SetIlluminant, SetIlluminantType or an assignment
    /// replaces it.
    KV_Illuminant *GetIlluminant() const { return m_illuminant.get(); }
    KV_IlluminantType GetIlluminantType() const { return m_illuminantType; }
    KV_ObserverType GetObserverType() const { return m_observerType; }
    /// A copy of the wavelengths, nm.
    std::vector<float> GetWavelengths() const { return m_wavelengths; }
    /// The grid, nm, and its number of samples.
    void GetSpectralBounds(std::int32_t &start, std::int32_t &end, std::int32_t &step,
                           std::int32_t &count) const;

    /// Sets the space, and the channels as ColorSpaceDimension tells them. For KV_CS_SPEC alone also the
    /// grid, with (end - start) / step + 1 samples, and the wavelengths, from start by step as far as they do
    /// not exceed end; there are none when start is below 1, end is not above start, or step is below 1. A
    /// step of 0 gives no samples.
    void SetColorSpace(KV_ColorSpace space, std::int32_t start, std::int32_t end, std::int32_t step);
    /// Sets the grid, with (end - start) / step + 1 samples and one more if the division leaves a remainder,
    /// so that the last may lie above end; the wavelengths; and the channels to the number of samples. The
    /// space stays. A grid that would have no samples, such as one with a step of 0, has 0.
    void SetSpectralBounds(std::int32_t start, std::int32_t end, std::int32_t step);
    /// Makes the space KV_CS_SPEC with one channel for each of these wavelengths. The grid goes from the
    /// first to the last, in steps of the difference of the first two, or of 1, all rounded to whole nm. An
    /// empty list changes nothing.
    void SetColorSpaceSpectrum(std::vector<float> &wavelengths);

    /// Takes a copy of the light by MakeCopyOf into a new D50, with its observer and kind. Null gives D50
    /// under the 2 degree observer. It may be the light that is here.
    void SetIlluminant(KV_Illuminant *illuminant);
    /// Sets the kind and makes the standard light of it, under the present observer. An equal kind changes
    /// nothing.
    void SetIlluminantType(KV_IlluminantType type);
    /// Sets the observer, and that of the light by SetStandardObserver.
    void SetObserverType(KV_ObserverType observer);

private:
    void setGrid(std::int32_t start, std::int32_t end, std::int32_t step, std::int32_t count);

    KV_ColorSpace m_colorSpace = KV_CS_LAB;
    std::uint32_t m_dimension = 3;
    std::int32_t m_flag = 1;  // this and the lists are only copied
    std::vector<std::string> m_firstNames;
    std::vector<std::string> m_secondNames;
    std::vector<float> m_values;
    std::vector<float> m_wavelengths;
    std::int32_t m_spectralStart = 380;
    std::int32_t m_spectralEnd = 730;
    std::int32_t m_spectralStep = 10;
    std::int32_t m_spectralCount = 36;
    std::unique_ptr<KV_Illuminant> m_illuminant;  // never null
    KV_IlluminantType m_illuminantType = KV_IT_D50;
    KV_ObserverType m_observerType = KV_Observer2Deg;
};
