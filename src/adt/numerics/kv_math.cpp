#include "kvbase/numerics/kv_math.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>

#include "adt/numerics/decomposed.h"
#include "adt/numerics/inverse3.h"
#include "kvbase/runtime/kv_exception.h"

using namespace kv::detail;

namespace {

// The threshold of a condition's element that a particular solution can rest on.
constexpr double kSmallestElement = 1e-10;
constexpr double kSmallestDeterminant = 1e-10;

// A matrix of zeros for the caller to release; an empty one is an array, too.
std::unique_ptr<double[]> newMatrix(std::size_t rows, std::size_t columns) {
    return std::make_unique<double[]>(std::max<std::size_t>(rows * columns, 1));
}

void demandEnoughRows(std::int32_t m, std::int32_t n) {
    if (m < n)
        throw KV_Exception("ATTENTION: Not enough data points for meaningful fit.", KV_ERR_BAD_INPUT, KV_HERE,
                           true);
}

// The first p columns of p rows of n.
bool invertLeadingBlock(const double *c, std::int32_t p, std::int32_t n, double *inverse) {
    for (std::size_t row = 0; row < size(p); ++row)
        std::copy_n(c + row * size(n), size(p), inverse + row * size(p));
    return Matrix_Inverse(inverse, p, inverse) != 0;
}

// Some x with c x = d, into n zeros.
void particularSolution(const double *c, const double *d, std::int32_t p, std::int32_t n, double *x) {
    if (p == 1) {
        const double *const element =
            std::find_if(c, c + size(n), [](double e) { return std::fabs(e) > kSmallestElement; });
        if (element != c + size(n)) x[element - c] = d[0] / *element;
        return;
    }
    Workspace space(size(p) * size(p));
    double *const inverse = space.take(size(p) * size(p));
    if (p > n || !invertLeadingBlock(c, p, n, inverse)) {
        Decomposed(c, p, n).solve(d, x);
        return;
    }
    for (std::size_t i = 0; i < size(p); ++i)
        for (std::size_t j = 0; j < size(p); ++j)
            x[i] += inverse[i * size(p) + j] * d[j];
}

// Row index of the pivot for column k. A later row replaces an earlier one only when it is strictly larger.
std::size_t pivotRow(const double *m, std::size_t n, std::size_t k) {
    std::size_t pivot = k;
    double largest = -1;  // below all but not-a-number
    for (std::size_t i = k; i < n; ++i) {
        if (std::fabs(m[i * n + k]) > largest) {
            largest = std::fabs(m[i * n + k]);
            pivot = i;
        }
    }
    return pivot;
}

void eliminate(double *m, std::size_t n, std::size_t k) {
    double *const own = m + k * n;
    const double q = 1 / own[k];
    for (std::size_t j = 0; j < n; ++j)
        own[j] *= q;
    own[k] = q;
    for (std::size_t i = 0; i < n; ++i) {
        double *const row = m + i * n;
        if (row == own) continue;
        const double f = row[k];
        for (std::size_t j = 0; j < n; ++j)
            row[j] -= f * own[j];
        row[k] = -q * f;
    }
}

}  // namespace

std::int32_t Matrix_Inverse(const double *a, std::int32_t n, double *inv) {
    const std::size_t count = size(n);
    if (inv != a) std::copy_n(a, count * count, inv);
    std::size_t few[32];
    const std::unique_ptr<std::size_t[]> many(count > std::size(few) ? new std::size_t[count] : nullptr);
    std::size_t *const column = many ? many.get() : few;  // the column of the result that stands at i
    for (std::size_t i = 0; i < count; ++i)
        column[i] = i;
    std::int32_t isRegular = 1;
    for (std::size_t k = 0; k < count && isRegular != 0; ++k) {
        const std::size_t pivot = pivotRow(inv, count, k);
        if (inv[pivot * count + k] == 0) {
            isRegular = 0;
            break;
        }
        if (pivot != k) {
            std::swap(column[k], column[pivot]);
            std::swap_ranges(inv + k * count, inv + (k + 1) * count, inv + pivot * count);
        }
        eliminate(inv, count, k);
    }
    for (std::size_t i = 0; i < count; ++i) {
        while (column[i] != i) {
            const std::size_t t = column[i];
            for (double *row = inv; row != inv + count * count; row += count)
                std::swap(row[i], row[t]);
            column[i] = column[t];
            column[t] = t;
        }
    }
    return isRegular;
}

bool kv::detail::invert3(const float *a, float *inverse) {
    const float det = a[0] * a[4] * a[8] + a[1] * a[5] * a[6] + a[2] * a[3] * a[7] - a[2] * a[4] * a[6] -
                      a[1] * a[3] * a[8] - a[0] * a[5] * a[7];
    if (!(std::fabs(static_cast<double>(det)) > kSmallestDeterminant)) return false;
    const float adjugate[9] = {
        a[4] * a[8] - a[5] * a[7], a[2] * a[7] - a[1] * a[8], a[1] * a[5] - a[2] * a[4],
        a[5] * a[6] - a[3] * a[8], a[0] * a[8] - a[2] * a[6], a[2] * a[3] - a[0] * a[5],
        a[3] * a[7] - a[4] * a[6], a[1] * a[6] - a[0] * a[7], a[0] * a[4] - a[1] * a[3]};
    for (int i = 0; i < 9; ++i)
        inverse[i] = adjugate[i] / det;
    return true;
}

void MatrixInverse(const float *a, float *inv) { invert3(a, inv); }

void Least_Squares(const double *a, const double *b, std::int32_t m, std::int32_t n, double *x) {
    demandEnoughRows(m, n);
    Decomposed(a, m, n).solve(b, x);
}

void Constrained_Least_Squares(const double *a, const double *b, std::int32_t m, std::int32_t n, double *x,
                               const double *c, const double *d, std::int32_t p) {
    demandEnoughRows(m, n);
    if (p < 1) {
        Least_Squares(a, b, m, n, x);
        return;
    }
    double *z = nullptr;
    std::int32_t k = 0;
    Null_Space(c, p, n, &z, &k);
    const std::unique_ptr<double[]> basis(z);
    const std::size_t free = size(k);

    Workspace space(size(n) + size(m) * free + size(m) + free);
    double *const x0 = space.take(size(n)), *const a2 = space.take(size(m) * free);
    double *const b2 = space.take(size(m)), *const y = space.take(free);
    std::fill_n(x0, size(n), 0.0);
    particularSolution(c, d, p, n, x0);
    for (std::size_t i = 0; i < size(m); ++i) {
        const double *const row = a + i * size(n);
        double *const reduced = a2 + i * free;
        std::fill_n(reduced, free, 0.0);
        double known = 0;
        for (std::size_t j = 0; j < size(n); ++j) {
            for (std::size_t column = 0; column < free; ++column)
                reduced[column] += row[j] * z[j * free + column];
            known += row[j] * x0[j];
        }
        b2[i] = b[i] - known;
    }
    Least_Squares(a2, b2, m, k, y);
    for (std::size_t j = 0; j < size(n); ++j) {
        double sum = 0;
        for (std::size_t i = 0; i < free; ++i)
            sum += z[j * free + i] * y[i];
        x[j] = x0[j] + sum;
    }
}

void Null_Space(const double *c, std::int32_t p, std::int32_t n, double **z, std::int32_t *k) {
    if (p == 1) {
        const std::size_t columns = size(n - 1);
        auto basis = newMatrix(size(n), columns);
        for (std::size_t i = 0; i < columns; ++i) {
            basis[i * columns + i] = c[i + 1];
            basis[(i + 1) * columns + i] = -c[i];
        }
        *z = basis.release();
        *k = static_cast<std::int32_t>(columns);
        return;
    }
    const Decomposed decomposed(c, p, n);
    const double *const w = decomposed.values();
    const auto isFree = [&](std::size_t j) { return w[j] < decomposed.threshold(); };
    std::size_t columns = 0;
    for (std::size_t j = 0; j < size(n); ++j)
        columns += isFree(j) ? 1 : 0;
    auto basis = newMatrix(size(n), columns);
    for (std::size_t j = 0, column = 0; j < size(n); ++j) {
        if (!isFree(j)) continue;
        for (std::size_t row = 0; row < size(n); ++row)
            basis[row * columns + column] = decomposed.v()[row * size(n) + j];
        ++column;
    }
    *z = basis.release();
    *k = static_cast<std::int32_t>(columns);
}

void Eigen(const double *a, std::int32_t m, std::int32_t n, double *values, double *vectors) {
    if (m != n) throw KV_Exception("Eigen: the matrix is not square", KV_ERR_BAD_INPUT, KV_HERE, true);
    const Decomposed decomposed(a, m, n);
    const double *const w = decomposed.values();
    const std::size_t count = size(n);
    for (std::size_t j = 0; j < count; ++j) {
        if (std::find(w + j + 1, w + count, w[j]) != w + count) continue;
        values[j] = std::ldexp(w[j], decomposed.exponent());
        for (std::size_t row = 0; row < size(m); ++row)
            vectors[row * size(m) + j] = decomposed.u()[row * size(m) + j];
    }
}
