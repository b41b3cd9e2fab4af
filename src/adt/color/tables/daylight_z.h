#pragma once

// Z of daylight at some temperatures, Y = 100, under the 2 and the 10 degree observer. A Z tells the
// temperature of the nearest row; at 5000, 6500 and 9300 K they are those of D50, D65 and D93.

namespace kv::detail {

struct DaylightZ {
    float temperature;  // kelvin
    float z2, z10;
};

constexpr DaylightZ kDaylightZ[] = {
    {4800.0f, 78.366f, 77.328f},    {5000.0f, 82.49f, 81.36f},    {5500.0f, 92.102f, 90.853f},
    {6000.0f, 100.794f, 99.472f},   {6500.0f, 108.8f, 107.25f},   {7000.0f, 116.019f, 114.248f},
    {7500.0f, 122.52f, 120.562f},   {8000.0f, 128.519f, 126.24f}, {8500.0f, 133.869f, 131.359f},
    {9000.0f, 138.686f, 135.988f},  {9300.0f, 141.32f, 138.56f},  {10000.0f, 147.136f, 144.003f},
    {12000.0f, 160.245f, 156.276f},
};
static_assert(sizeof(kDaylightZ) / sizeof(kDaylightZ[0]) == 13, "4800 to 12000 K");

}  // namespace kv::detail
