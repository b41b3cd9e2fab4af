#include "adt/color/plain_cielab.h"

#include "kvbase/color/kv_colorimetry.h"

namespace kv::detail {

// The ratios are floats, all else is double.
void plainXyzToLab(const float (&white)[3], const float *xyz, float *lab) {
    const double fx = CieF(static_cast<double>(xyz[0] / white[0]));
    const double fy = CieF(static_cast<double>(xyz[1] / white[1]));
    const double fz = CieF(static_cast<double>(xyz[2] / white[2]));
    lab[0] = static_cast<float>(fy * 116 - 16);
    lab[1] = static_cast<float>((fx - fy) * 500);
    lab[2] = static_cast<float>((fy - fz) * 200);
}

void plainLabToXyz(const float (&white)[3], const float *lab, float *xyz) {
    const double fy = (static_cast<double>(lab[0]) + 16) / 116;
    const double fx = static_cast<double>(lab[1]) / 500 + fy;
    const double fz = fy - static_cast<double>(lab[2]) / 200;
    xyz[0] = static_cast<float>(static_cast<double>(white[0]) * CieG(fx));
    xyz[1] = static_cast<float>(static_cast<double>(white[1]) * CieG(fy));
    xyz[2] = static_cast<float>(static_cast<double>(white[2]) * CieG(fz));
}

}  // namespace kv::detail
