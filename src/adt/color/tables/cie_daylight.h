#pragma once

// Components of the CIE daylight series: relative power, 360 to 830 nm by 10, 100 and 0, 0 at 560 nm.
// Source: CIE 015:2018, table 6, after Judd, MacAdam and Wyszecki 1964, data set 10.25039/CIE.DS.w7zunnny,
// of which these are the rows at whole tens from 360 nm up.
// Licence: CC BY-SA 4.0, see NOTICE.
// Made by scripts/make_colour_tables.

namespace kv::detail {

// clang-format off
constexpr float kDaylightS0[] = {
    61.50f,  68.80f,  63.40f,  65.80f,  94.80f,  104.80f, 105.90f, 96.80f,   // 360
    113.90f, 125.60f, 125.50f, 121.30f, 121.30f, 113.50f, 113.10f, 110.80f,  // 440
    106.50f, 108.80f, 105.30f, 104.40f, 100.00f, 96.00f,  95.10f,  89.10f,   // 520
    90.50f,  90.30f,  88.40f,  84.00f,  85.10f,  81.90f,  82.60f,  84.90f,   // 600
    81.30f,  71.90f,  74.30f,  76.40f,  63.30f,  71.70f,  77.00f,  65.20f,   // 680
    47.70f,  68.60f,  65.00f,  66.00f,  61.00f,  53.30f,  58.90f,  61.90f,   // 760
};
static_assert(sizeof(kDaylightS0) / sizeof(kDaylightS0[0]) == 48, "360 to 830 nm by 10");

constexpr float kDaylightS1[] = {
    38.00f,  42.40f,  38.50f,  35.00f,  43.40f,  46.30f,  43.90f,  37.10f,   // 360
    36.70f,  35.90f,  32.60f,  27.90f,  24.30f,  20.10f,  16.20f,  13.20f,   // 440
    8.60f,   6.10f,   4.20f,   1.90f,   0.00f,   -1.60f,  -3.50f,  -3.50f,   // 520
    -5.80f,  -7.20f,  -8.60f,  -9.50f,  -10.90f, -10.70f, -12.00f, -14.00f,  // 600
    -13.60f, -12.00f, -13.30f, -12.90f, -10.60f, -11.60f, -12.20f, -10.20f,  // 680
    -7.80f,  -11.20f, -10.40f, -10.60f, -9.70f,  -8.30f,  -9.30f,  -9.80f,   // 760
};
static_assert(sizeof(kDaylightS1) / sizeof(kDaylightS1[0]) == 48, "360 to 830 nm by 10");

constexpr float kDaylightS2[] = {
    5.30f,  6.10f,  3.00f,  1.20f,  -1.10f, -0.50f, -0.70f, -1.20f,  // 360
    -2.60f, -2.90f, -2.80f, -2.60f, -2.60f, -1.80f, -1.50f, -1.30f,  // 440
    -1.20f, -1.00f, -0.50f, -0.30f, 0.00f,  0.20f,  0.50f,  2.10f,   // 520
    3.20f,  4.10f,  4.70f,  5.10f,  6.70f,  7.30f,  8.60f,  9.80f,   // 600
    10.20f, 8.30f,  9.60f,  8.50f,  7.00f,  7.60f,  8.00f,  6.70f,   // 680
    5.20f,  7.40f,  6.80f,  7.00f,  6.40f,  5.50f,  6.10f,  6.50f,   // 760
};
static_assert(sizeof(kDaylightS2) / sizeof(kDaylightS2[0]) == 48, "360 to 830 nm by 10");
// clang-format on

}  // namespace kv::detail
