#include "kvbase/color/kv_ct_cielab.h"

#include <algorithm>
#include <cstddef>

#include "adt/color/color_kernels.h"

void KV_CTCielab::GetWhitePoint(float *out) const { std::copy_n(m_white, 3, out); }
void KV_CTCielab::SetWhitePoint(float *whitePoint) { std::copy_n(whitePoint, 3, m_white); }

void KV_CTCielab::XYZ2Lab(float *xyz, float *lab, std::int32_t count) const {
    if (count > 0) kv::detail::colorKernels().xyzToLab(m_white, xyz, lab, static_cast<std::size_t>(count));
}

void KV_CTCielab::Lab2XYZ(float *lab, float *xyz, std::int32_t count) const {
    if (count > 0) kv::detail::colorKernels().labToXyz(m_white, lab, xyz, static_cast<std::size_t>(count));
}
