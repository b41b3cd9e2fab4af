#include "kvbase/evaluation/kv_gamut_comparison.h"

void KV_GamutColorNum::SetSizes(std::uint32_t firstSize, std::uint32_t secondSize) {
    first.resize(firstSize);
    second.resize(secondSize);
    number = 0;
}

void KV_GamutComparison::SetSizes(std::uint32_t first, std::uint32_t second) {
    for (KV_GamutColorNum &color : colors)
        color.SetSizes(first, second);
}
