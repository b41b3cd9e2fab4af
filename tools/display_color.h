#pragma once

#include <string>

namespace kvtool {

/// "#rrggbb" of a CIELAB colour under D50, for a display. What lies outside sRGB is clipped in each channel.
/// Source: IEC 61966-2-1, with the Bradford adaptation from D50 to D65 of ICC.1 in the matrix.
std::string displayColor(const float *lab);

}  // namespace kvtool
