#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

// The singular value decomposition and its workspace, for the functions of kv_math.h. Vectors of the
// decomposition count from 1: w and rv1 have n + 1 entries, and entry 0 is never a result.

namespace kv::detail {

/// Memory for the arrays of one call. Small systems take it from the stack.
class Workspace {
public:
    /// Room for so many numbers in all.
    explicit Workspace(std::size_t size) {
        if (size > kSmall) m_large.reset(new double[size]);
        m_next = m_large ? m_large.get() : m_small;
    }
    Workspace(const Workspace &) = delete;
    Workspace &operator=(const Workspace &) = delete;

    /// The next count of them, which are not set.
    double *take(std::size_t count) {
        double *const array = m_next;
        m_next += count;
        return array;
    }

private:
    static constexpr std::size_t kSmall = 2048;
    double m_small[kSmall];
    std::unique_ptr<double[]> m_large;
    double *m_next;
};

/// sqrt(a^2 + b^2) without an overflow on the way.
double Safe_Hypot(double a, double b);

/// Replaces the m by n matrix a by U, sets w[1] to w[n] to the singular values, in no order, and v to V (not
/// its transpose), n by n, so that the former a is U W V^T. a needs room for n rows where m is less; what
/// stands in rows m and below afterwards is of no use. rv1 is scratch. With n below 1 nothing is done. Throws
/// KV_Exception (KV_ERR_NO_CONVERGENCE).
void Svd_Decompose(double *a, std::int32_t m, std::int32_t n, double *w, double *v, double *rv1);

/// Sets singular values below 1e-10 of the largest to 0, and returns this threshold. A not-a-number is
/// neither the largest nor below it.
double cutSingularValues(double *w, std::int32_t n);

/// The x that minimises |a x - b|, of several the shortest, for a decomposed matrix. A singular value of
/// exactly 0 drops its direction. tmp is scratch, of n entries.
void Svd_BackSubstitute(const double *u, const double *w, const double *v, const double *b, double *tmp,
                        std::int32_t m, std::int32_t n, double *x);

}  // namespace kv::detail
