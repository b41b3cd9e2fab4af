#pragma once

namespace kv::detail {

/// a x b, as Cross3v gives it: a call of an exported function costs more than its operations.
inline void cross3(const double *a, const double *b, double *out) {
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

}  // namespace kv::detail
