#pragma once

// Records in which callers keep how two gamuts compare. The library holds and copies them along with a report
// and gives their contents no meaning. Plain values; one thread at a time.

#include <cstdint>
#include <vector>

#include "kvbase/base/export.h"
#include "kvbase/color/kv_gamut_color.h"
#include "kvbase/numerics/kv_simplex.h"

/// Two lists of numbers and a count.
class KV_EXPORT KV_GamutColorNum {
public:
    /// Gives the lists these lengths, new entries being 0, and sets the number to 0.
    void SetSizes(std::uint32_t firstSize, std::uint32_t secondSize);

    std::vector<float> first;
    std::vector<float> second;
    std::uint32_t number = 0;
};

/// What is known of two gamuts.
class KV_EXPORT KV_GamutComparison {
public:
    /// SetSizes of the four colours.
    void SetSizes(std::uint32_t first, std::uint32_t second);

    std::int32_t kind = 4;
    KV_GamutColorNum colors[4];
    KV_DynamicRange ranges[2];
    KV_LabTable tables[2];  ///< as InterpolateLab takes them
    std::vector<std::vector<float>> lists[2];
};
