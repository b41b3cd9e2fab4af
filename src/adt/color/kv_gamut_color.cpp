#include "kvbase/color/kv_gamut_color.h"

#include <algorithm>

bool IsGamutColor(float *cmyk) {
    const auto isZero = [](float value) { return value < 0.0001F; };
    const auto isFull = [](float value) { return value > 99.9999F; };
    if (isZero(cmyk[3])) return std::any_of(cmyk, cmyk + 3, isZero);
    return isFull(cmyk[3]) && std::any_of(cmyk, cmyk + 3, isFull);
}
