#include "kvbase/color/kv_ct_cielab.h"

#include <algorithm>

#include "adt/color/plain_cielab.h"

void KV_CTCielab::GetWhitePoint(float *out) const { std::copy_n(m_white, 3, out); }
void KV_CTCielab::SetWhitePoint(float *whitePoint) { std::copy_n(whitePoint, 3, m_white); }

void KV_CTCielab::XYZ2Lab(float *xyz, float *lab, std::int32_t count) const {
    for (; count > 0; --count, xyz += 3, lab += 3)
        kv::detail::plainXyzToLab(m_white, xyz, lab);
}

void KV_CTCielab::Lab2XYZ(float *lab, float *xyz, std::int32_t count) const {
    for (; count > 0; --count, lab += 3, xyz += 3)
        kv::detail::plainLabToXyz(m_white, lab, xyz);
}
