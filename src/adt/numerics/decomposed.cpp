#include "adt/numerics/decomposed.h"

#include <cmath>

namespace kv::detail {
namespace {

// The power of two that brings a matrix near 1 whose elements are extreme, else 0.
int extremeExponent(const double *matrix, std::size_t count) {
    constexpr int kOrdinary = 300;
    double largest = 0;
    for (std::size_t i = 0; i < count; ++i)
        if (std::fabs(matrix[i]) > largest && std::isfinite(matrix[i])) largest = std::fabs(matrix[i]);
    const int exponent = largest > 0 ? std::ilogb(largest) : 0;
    return exponent > kOrdinary || exponent < -kOrdinary ? exponent : 0;
}

void scale(double *numbers, std::size_t count, int exponent) {
    if (exponent == 0) return;
    for (std::size_t i = 0; i < count; ++i)
        numbers[i] = std::ldexp(numbers[i], exponent);
}

}  // namespace

Decomposed::Decomposed(const double *matrix, std::int32_t m, std::int32_t n)
    : m_rows(m),
      m_columns(n),
      m_exponent(extremeExponent(matrix, size(m) * size(n))),
      m_space(std::max(size(m), size(n)) * size(n) + size(n) * size(n) + 2 * (size(n) + 1)),
      m_u(m_space.take(std::max(size(m), size(n)) * size(n))),
      m_v(m_space.take(size(n) * size(n))),
      m_w(m_space.take(size(n) + 1)),
      m_scratch(m_space.take(size(n) + 1)) {
    double *const end = std::copy_n(matrix, size(m) * size(n), m_u);
    std::fill(end, m_v, 0.0);  // rows in which the decomposition writes, too
    scale(m_u, size(m) * size(n), -m_exponent);
    Svd_Decompose(m_u, m, n, m_w, m_v, m_scratch);
    m_threshold = cutSingularValues(m_w, n);
}

void Decomposed::solve(const double *b, double *x) {
    Svd_BackSubstitute(m_u, m_w, m_v, b, m_scratch, m_rows, m_columns, x);
    scale(x, size(m_columns), -m_exponent);
}

}  // namespace kv::detail
