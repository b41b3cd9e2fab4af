#include "kvbase/color/kv_press_inks.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <limits>

#include "adt/color/tables/ink_spectra.h"

using kv::detail::InkSpectrum;
using kv::detail::kInkSpectra;

namespace {

constexpr int kMostInks = 30;     // whose sets can be numbered
constexpr int kMostOverlaps = 7;  // inks of a set that is derived
constexpr float kSmallestWeight = 0.00001F;

template <class Name>
const InkSpectrum *spectrumOf(const Name &name) {
    const auto *const at =
        std::find_if(std::begin(kInkSpectra), std::end(kInkSpectra), [&name](const InkSpectrum &ink) {
            const std::string_view known = ink.name;
            return std::equal(name.begin(), name.end(), known.begin(), known.end(),
                              [](auto one, char other) { return one == static_cast<decltype(one)>(other); });
        });
    return at != std::end(kInkSpectra) ? at : nullptr;
}

void deriveOverlap(std::uint32_t inks, std::vector<std::vector<float>> &overlaps,
                   std::vector<float> &weights) {
    float sum = 0;
    for (std::uint32_t left = inks; left != 0; left &= left - 1)
        sum += weights[inks & ~(left & -left)];
    const float mean = sum / static_cast<float>(std::popcount(inks));
    weights[inks] = mean < kSmallestWeight ? 0 : mean;
    for (std::uint32_t rest = inks; rest != 0; rest &= rest - 1) {
        const auto ink = static_cast<std::size_t>(std::countr_zero(rest));
        float smallest = std::numeric_limits<float>::infinity();
        for (std::uint32_t left = inks & ~(rest & -rest); left != 0; left &= left - 1)
            smallest = std::min(smallest, overlaps[inks & ~(left & -left)][ink]);
        overlaps[inks][ink] = smallest;
    }
}

}  // namespace

// Names go by value in the interface. NOLINTBEGIN(performance-unnecessary-value-param)

float *GetDefaultSpectrum(std::string name) {
    const InkSpectrum *const ink = spectrumOf(name);
    return ink != nullptr ? const_cast<float *>(ink->reflectance) : nullptr;
}

bool IsProcessColor(KV_WString name) {
    const InkSpectrum *const ink = spectrumOf(name);
    return ink != nullptr && ink != std::begin(kInkSpectra);  // which is paper
}

// NOLINTEND(performance-unnecessary-value-param)

void CalculateFurtherOverlaps(std::int32_t inks, std::vector<std::vector<float>> &overlaps,
                              std::vector<float> &weights) {
    if (inks < 3 || inks > kMostInks) return;
    const std::uint32_t sets = 1U << inks;
    if (overlaps.size() < sets || weights.size() < sets) return;
    for (std::uint32_t set = 0; set < sets; ++set) {
        const int size = std::popcount(set);
        const bool isUsed = size >= 2 && size <= kMostOverlaps;
        if (isUsed && overlaps[set].size() < static_cast<std::size_t>(inks)) return;
    }
    for (int size = 3; size <= std::min(inks, kMostOverlaps); ++size)
        for (std::uint32_t set = 0; set < sets; ++set)
            if (std::popcount(set) == size) deriveOverlap(set, overlaps, weights);
}
