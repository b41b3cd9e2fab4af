#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "adt/numerics/svd.h"

namespace kv::detail {

/// A count that may be below 0, as the interface takes it.
inline std::size_t size(std::int32_t n) { return static_cast<std::size_t>(std::max(n, 0)); }

/// A matrix, decomposed once for any number of right-hand sides, with the small singular values set to 0.
/// Matrices whose elements are so large or small that products of a few of them would not be numbers any more
/// are first brought near 1 by a power of two, which takes no digit away. Throws KV_Exception
/// (KV_ERR_NO_CONVERGENCE).
class Decomposed {
public:
    /// matrix  m by n, in row-major order; only read
    Decomposed(const double *matrix, std::int32_t m, std::int32_t n);

    /// The x that minimises |a x - b|, of several the shortest.
    void solve(const double *b, double *x);
    const double *u() const { return m_u; }
    const double *v() const { return m_v; }
    /// The singular values and their threshold, in units of 2^exponent, counted from 0.
    const double *values() const { return m_w + 1; }
    double threshold() const { return m_threshold; }
    int exponent() const { return m_exponent; }

private:
    std::int32_t m_rows, m_columns;
    int m_exponent;
    Workspace m_space;
    double *m_u, *m_v, *m_w, *m_scratch;
    double m_threshold;
};

}  // namespace kv::detail
