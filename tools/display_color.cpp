#include "display_color.h"

#include <kvbase/kvbase.h>

#include <algorithm>
#include <cmath>

namespace kvtool {
namespace {

// XYZ under D50, the Y of white 1, to linear sRGB.
constexpr double kToLinear[3][3] = {{3.1338561, -1.6168667, -0.4906146},
                                    {-0.9787684, 1.9161415, 0.0334540},
                                    {0.0719453, -0.2289914, 1.4052427}};

int channel(double linear) {
    const double clipped = std::clamp(linear, 0.0, 1.0);
    const double encoded =
        clipped <= 0.0031308 ? 12.92 * clipped : 1.055 * std::pow(clipped, 1 / 2.4) - 0.055;
    return static_cast<int>(std::lround(255 * encoded));
}

}  // namespace

std::string displayColor(const float *lab) {
    float color[3] = {lab[0], lab[1], lab[2]};
    KV_CTCielab().Lab2XYZ(color, color, 1);
    std::string text = "#";
    for (const double(&row)[3] : kToLinear) {
        const int value = channel((row[0] * color[0] + row[1] * color[1] + row[2] * color[2]) / 100);
        text += "0123456789abcdef"[value / 16];
        text += "0123456789abcdef"[value % 16];
    }
    return text;
}

}  // namespace kvtool
