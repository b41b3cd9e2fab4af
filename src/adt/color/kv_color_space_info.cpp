#include "kvbase/color/kv_color_space_info.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "adt/univval/number_cast.h"
#include "spectrum_grid.h"

namespace {

/// The first count wavelengths of a grid.
std::vector<float> gridFrom(std::int32_t start, std::int32_t step, std::int32_t count) {
    std::vector<float> wavelengths;
    wavelengths.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i)
        wavelengths.push_back(static_cast<float>(step) * static_cast<float>(i) + static_cast<float>(start));
    return wavelengths;
}

std::int32_t rounded(float wavelength) {
    return kv::detail::truncateTo32(std::floor(static_cast<double>(wavelength) + 0.5));
}

/// A number of samples, at least 0.
std::int32_t toCount(std::int64_t number) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(number, 0, std::numeric_limits<std::int32_t>::max()));
}

/// The standard light of a kind and observer, to which another one is assigned.
std::unique_ptr<KV_Illuminant> copyOf(const KV_Illuminant &light, KV_IlluminantType type,
                                      KV_ObserverType observer) {
    auto copy = std::make_unique<KV_Illuminant>(type, observer);
    *copy = light;
    return copy;
}

}  // namespace

KV_ColorSpaceInfo::KV_ColorSpaceInfo()
    : m_wavelengths(gridFrom(380, 10, 36)),
      m_illuminant(std::make_unique<KV_Illuminant>(KV_IT_D50, KV_Observer2Deg)) {}

KV_ColorSpaceInfo::KV_ColorSpaceInfo(const KV_ColorSpace &space, std::int32_t start, std::int32_t end,
                                     std::int32_t step)
    : KV_ColorSpaceInfo() {
    SetColorSpace(space, start, end, step);
}

KV_ColorSpaceInfo::KV_ColorSpaceInfo(const KV_ColorSpaceInfo &other) : KV_ColorSpaceInfo() { *this = other; }

KV_ColorSpaceInfo &KV_ColorSpaceInfo::operator=(const KV_ColorSpaceInfo &other) {
    if (this == &other) return *this;
    auto illuminant = copyOf(*other.m_illuminant, other.m_illuminantType, other.m_observerType);
    m_firstNames = other.m_firstNames;
    m_secondNames = other.m_secondNames;
    m_values = other.m_values;
    m_wavelengths = other.m_wavelengths;
    m_colorSpace = other.m_colorSpace;
    m_dimension = other.m_dimension;
    m_flag = other.m_flag;
    m_spectralStart = other.m_spectralStart;
    m_spectralEnd = other.m_spectralEnd;
    m_spectralStep = other.m_spectralStep;
    m_spectralCount = other.m_spectralCount;
    m_illuminant = std::move(illuminant);
    m_illuminantType = other.m_illuminantType;
    m_observerType = other.m_observerType;
    return *this;
}

KV_ColorSpaceInfo::~KV_ColorSpaceInfo() = default;

void KV_ColorSpaceInfo::GetSpectralBounds(std::int32_t &start, std::int32_t &end, std::int32_t &step,
                                          std::int32_t &count) const {
    start = m_spectralStart;
    end = m_spectralEnd;
    step = m_spectralStep;
    count = m_spectralCount;
}

void KV_ColorSpaceInfo::SetColorSpace(KV_ColorSpace space, std::int32_t start, std::int32_t end,
                                      std::int32_t step) {
    if (space == KV_CS_SPEC) {
        const std::int32_t count = step != 0 ? toCount((std::int64_t{end} - start) / step + 1) : 0;
        const bool hasWavelengths = start >= 1 && end > start && step >= 1;
        m_wavelengths = gridFrom(start, step, hasWavelengths ? count : 0);
        setGrid(start, end, step, count);
    }
    m_colorSpace = space;
    m_dimension = static_cast<std::uint32_t>(std::max(0, ColorSpaceDimension(space, start, end, step)));
}

void KV_ColorSpaceInfo::SetSpectralBounds(std::int32_t start, std::int32_t end, std::int32_t step) {
    const std::int32_t count = toCount(kv::detail::gridSamples(start, end, step));
    m_wavelengths = gridFrom(start, step, count);
    m_dimension = static_cast<std::uint32_t>(count);
    setGrid(start, end, step, count);
}

void KV_ColorSpaceInfo::SetColorSpaceSpectrum(std::vector<float> &wavelengths) {
    if (wavelengths.empty()) return;
    m_wavelengths = wavelengths;
    const std::int32_t step = wavelengths.size() < 2 ? 1 : rounded(wavelengths[1] - wavelengths[0]);
    const std::int32_t count = toCount(static_cast<std::int64_t>(wavelengths.size()));
    setGrid(rounded(wavelengths.front()), rounded(wavelengths.back()), step, count);
    m_colorSpace = KV_CS_SPEC;
    m_dimension = static_cast<std::uint32_t>(count);
}

void KV_ColorSpaceInfo::SetIlluminant(KV_Illuminant *illuminant) {
    auto copy = std::make_unique<KV_Illuminant>();
    copy->MakeCopyOf(illuminant);
    m_illuminant = std::move(copy);
    m_observerType = m_illuminant->GetStandardObserver();
    m_illuminantType = m_illuminant->GetIlluminantType();
}

void KV_ColorSpaceInfo::SetIlluminantType(KV_IlluminantType type) {
    if (type == m_illuminantType) return;
    m_illuminant = std::make_unique<KV_Illuminant>(type, m_observerType);
    m_illuminantType = type;
}

void KV_ColorSpaceInfo::SetObserverType(KV_ObserverType observer) {
    m_observerType = observer;
    m_illuminant->SetStandardObserver(observer);
}

void KV_ColorSpaceInfo::setGrid(std::int32_t start, std::int32_t end, std::int32_t step, std::int32_t count) {
    m_spectralStart = start;
    m_spectralEnd = end;
    m_spectralStep = step;
    m_spectralCount = count;
}
