#pragma once

#include <cmath>

#include "kvbase/evaluation/kv_color_comparison.h"

namespace kv::detail {

/// The six quantities of a check in their order.
inline constexpr KV_ColorTol KV_ColorCheck::*kQuantities[] = {&KV_ColorCheck::dE, &KV_ColorCheck::dC,
                                                              &KV_ColorCheck::dH, &KV_ColorCheck::dL,
                                                              &KV_ColorCheck::da, &KV_ColorCheck::db};

/// The multiple of step that is nearest to value, the upper one of two.
inline float roundTo(float value, float step) { return std::floor(value / step + 0.5F) * step; }

}  // namespace kv::detail
