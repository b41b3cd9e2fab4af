#pragma once

// The constants of CIELAB's curve: t * 841 / 108 + 4 / 29 up to (6 / 29)^3, the cube root beyond. Source: CIE
// 15:2004, 8.2.1.

namespace kv::detail {

constexpr double kCurveStart = 0.008856451679035631;    // (6 / 29)^3
constexpr double kCurveOffset = 0.13793103448275862;    // 4 / 29
constexpr double kMirrorOffset = 0.27586206896551724;   // 8 / 29, twice the value at 0
constexpr double kCurveHalfRise = 0.06896551724137931;  // 2 / 29, from 0 to the end of the line

}  // namespace kv::detail
