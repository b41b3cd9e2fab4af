#pragma once

// Grids of wavelengths: from start by step up to end, with one step beyond end where it needs that.

#include <cstdint>

namespace kv::detail {

/// The number of samples of a grid; 0 for a step of 0, and where the number is below 1.
constexpr std::int64_t gridSamples(std::int32_t start, std::int32_t end, std::int32_t step) {
    if (step == 0) return 0;
    const std::int64_t length = std::int64_t{end} - start;
    const std::int64_t samples = length / step + 1 + (length % step != 0 ? 1 : 0);
    return samples > 0 ? samples : 0;
}

}  // namespace kv::detail
