// The decomposition in its published steps. Two things are other than a plain transcript, neither of which
// moves a rounding: sums that go down the rows run for all columns at once, each in its own order, since the
// rows lie in memory side by side; and the sweeps work on the transposed U and V, whose columns lie so.

#include "adt/numerics/svd.h"

#include <algorithm>
#include <cmath>

#include "kvbase/runtime/kv_exception.h"

namespace kv::detail {

namespace {

constexpr int kMostSweeps = 29;
constexpr double kCut = 1e-10;

double withSign(double magnitude, double sign) {
    return sign >= 0 ? std::fabs(magnitude) : -std::fabs(magnitude);
}

// The loops over a column or a row take most of the time. Long ones run with the widest vectors that the
// processor has; sanitizers can't look into the choice among these.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__linux__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#    define KV_WIDEST __attribute__((target_clones("avx2", "default")))
#else
#    define KV_WIDEST
#endif
constexpr std::size_t kShort = 8;

inline void rotateOne(double &x, double &y, double c, double s) {
    const double former = x, other = y;
    x = former * c + other * s;
    y = other * c - former * s;
}

KV_WIDEST void rotateLong(double *__restrict x, double *__restrict y, std::size_t count, double c, double s) {
    for (std::size_t i = 0; i < count; ++i)
        rotateOne(x[i], y[i], c, s);
}

// Turns two columns of count elements: x' = x c + y s, y' = y c - x s.
inline void rotate(double *x, double *y, std::size_t count, double c, double s) {
    if (count > kShort) {
        rotateLong(x, y, count, c, s);
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        rotateOne(x[i], y[i], c, s);
}

KV_WIDEST void addScaledLong(double *__restrict target, const double *__restrict source, double factor,
                             std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        target[i] += factor * source[i];
}

// target += factor * source.
inline void addScaled(double *target, const double *source, double factor, std::size_t count) {
    if (count > kShort) {
        addScaledLong(target, source, factor, count);
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        target[i] += factor * source[i];
}

void transpose(const double *from, std::size_t rows, std::size_t columns, double *to) {
    for (std::size_t r = 0; r < rows; ++r)
        for (std::size_t c = 0; c < columns; ++c)
            to[c * rows + r] = from[r * columns + c];
}

// Of a matrix of Rows by Columns, or of any when these are 0: small ones gain from loops of a known length.
// Indices count from 0 here, but for w and rv1.
template <std::size_t Rows, std::size_t Columns>
class Decomposition {
public:
    Decomposition(double *a, std::size_t m, std::size_t n, double *w, double *v, double *rv1)
        : m_a(a),
          m_m(m),
          m_n(n),
          m_w(w),
          m_v(v),
          m_rv1(rv1),
          m_space(m * n + n * n + n),
          m_ut(m_space.take(m * n)),
          m_vt(m_space.take(n * n)),
          m_sums(m_space.take(n)) {}

    void run() {
        std::fill_n(m_rv1, n() + 1, 0.0);
        bidiagonalise();
        accumulateRight();
        accumulateLeft();
        transpose(m_a, m(), n(), m_ut);
        transpose(m_v, n(), n(), m_vt);
        for (std::size_t k = n(); k >= 1; --k)
            findValue(k);
        transpose(m_ut, n(), m(), m_a);
        transpose(m_vt, n(), n(), m_v);
    }

private:
    std::size_t m() const { return Rows != 0 ? Rows : m_m; }
    std::size_t n() const { return Columns != 0 ? Columns : m_n; }
    double *row(std::size_t r) { return m_a + r * n(); }
    double &A(std::size_t r, std::size_t c) { return m_a[r * n() + c]; }
    double &V(std::size_t r, std::size_t c) { return m_v[r * n() + c]; }

    // For all columns j from `first` on: m_sums[j] = sum over the rows k from `top` to `end` of x(k) * M(k,
    // j).
    template <class X>
    void sumDown(const double *matrix, std::size_t top, std::size_t end, std::size_t first, const X &x) {
        const std::size_t count = n() - first;
        std::fill_n(m_sums + first, count, 0.0);
        for (std::size_t k = top; k < end; ++k)
            addScaled(m_sums + first, matrix + k * n() + first, x(k), count);
    }
    // For all columns j from `first` on and the rows k from `top` to `end`: M(k, j) += m_sums[j] * x(k).
    template <class X>
    void addDown(double *matrix, std::size_t top, std::size_t end, std::size_t first, const X &x) {
        for (std::size_t k = top; k < end; ++k)
            addScaled(matrix + k * n() + first, m_sums + first, x(k), n() - first);
    }

    void bidiagonalise() {
        double g = 0, scale = 0;
        m_anorm = 0;
        for (std::size_t i = 0; i < n(); ++i) {
            m_rv1[i + 1] = scale * g;
            g = scale = 0;
            if (i < m()) reflectColumn(i, g, scale);
            m_w[i + 1] = scale * g;
            g = scale = 0;
            if (i < m() && i + 1 < n()) reflectRow(i, g, scale);
            const double size = std::fabs(m_w[i + 1]) + std::fabs(m_rv1[i + 1]);
            if (size > m_anorm) m_anorm = size;
        }
    }

    // The Householder reflection that leaves of column i nothing below the diagonal.
    void reflectColumn(std::size_t i, double &g, double &scale) {
        for (std::size_t k = i; k < m(); ++k)
            scale += std::fabs(A(k, i));
        if (scale == 0) return;
        double s = 0;
        for (std::size_t k = i; k < m(); ++k) {
            A(k, i) /= scale;
            s += A(k, i) * A(k, i);
        }
        const double f = A(i, i);
        g = -withSign(std::sqrt(s), f);
        const double h = f * g - s;
        A(i, i) = f - g;
        const auto column = [&](std::size_t k) { return A(k, i); };
        sumDown(m_a, i, m(), i + 1, column);
        for (std::size_t j = i + 1; j < n(); ++j)
            m_sums[j] /= h;
        addDown(m_a, i, m(), i + 1, column);
        for (std::size_t k = i; k < m(); ++k)
            A(k, i) *= scale;
    }

    // The same for row i, right of the element beside the diagonal.
    void reflectRow(std::size_t i, double &g, double &scale) {
        const std::size_t l = i + 1;
        double *const own = row(i);
        for (std::size_t k = l; k < n(); ++k)
            scale += std::fabs(own[k]);
        if (scale == 0) return;
        double s = 0;
        for (std::size_t k = l; k < n(); ++k) {
            own[k] /= scale;
            s += own[k] * own[k];
        }
        const double f = own[l];
        g = -withSign(std::sqrt(s), f);
        const double h = f * g - s;
        own[l] = f - g;
        for (std::size_t k = l; k < n(); ++k)
            m_rv1[k + 1] = own[k] / h;
        for (std::size_t j = l; j < m(); ++j) {
            double sum = 0;
            for (std::size_t k = l; k < n(); ++k)
                sum += A(j, k) * own[k];
            addScaled(row(j) + l, m_rv1 + l + 1, sum, n() - l);
        }
        for (std::size_t k = l; k < n(); ++k)
            own[k] *= scale;
    }

    void accumulateRight() {
        double g = 0;
        for (std::size_t i = n(); i-- > 0;) {
            const std::size_t l = i + 1;
            if (l < n()) {
                if (g != 0) {
                    for (std::size_t j = l; j < n(); ++j)
                        V(j, i) = (A(i, j) / A(i, l)) / g;
                    sumDown(m_v, l, n(), l, [&](std::size_t k) { return A(i, k); });
                    addDown(m_v, l, n(), l, [&](std::size_t k) { return V(k, i); });
                }
                for (std::size_t j = l; j < n(); ++j)
                    V(i, j) = V(j, i) = 0;
            }
            V(i, i) = 1;
            g = m_rv1[i + 1];
        }
    }

    void accumulateLeft() {
        for (std::size_t i = n(); i-- > 0;) {
            const std::size_t l = i + 1;
            double g = m_w[i + 1];
            std::fill(row(i) + l, row(i) + n(), 0.0);
            if (g != 0) {
                g = 1 / g;
                const auto column = [&](std::size_t k) { return A(k, i); };
                sumDown(m_a, l, m(), l, column);
                for (std::size_t j = l; j < n(); ++j)
                    m_sums[j] = (m_sums[j] / A(i, i)) * g;
                addDown(m_a, i, m(), l, column);
                for (std::size_t j = i; j < m(); ++j)
                    A(j, i) *= g;
            } else {
                for (std::size_t j = i; j < m(); ++j)
                    A(j, i) = 0;
            }
            A(i, i) += 1;
        }
    }

    bool isNegligible(double x) const { return std::fabs(x) + m_anorm == m_anorm; }

    void rotateLeft(std::size_t j, std::size_t i, double c, double s) {
        rotate(m_ut + (j - 1) * m(), m_ut + (i - 1) * m(), m(), c, s);
    }
    void rotateRight(std::size_t j, std::size_t i, double c, double s) {
        rotate(m_vt + (j - 1) * n(), m_vt + (i - 1) * n(), n(), c, s);
    }

    // From here on indices count from 1, as those of w and rv1.
    void findValue(std::size_t k) {
        for (int sweep = 0;; ++sweep) {
            const std::size_t l = split(k);
            if (l == k) {
                if (m_w[k] < 0) {
                    m_w[k] = -m_w[k];
                    for (double *p = m_vt + (k - 1) * n(); p != m_vt + k * n(); ++p)
                        *p = -*p;
                }
                return;
            }
            if (sweep == kMostSweeps)
                throw KV_Exception("No convergence in 30 SVDCMP iterations", KV_ERR_NO_CONVERGENCE, KV_HERE,
                                   true);
            sweepDown(l, k);
        }
    }

    // Where the block that ends with k begins. rv1[1] is 0 from beginning to end, so there is always an
    // answer.
    std::size_t split(std::size_t k) {
        for (std::size_t l = k;; --l) {
            if (l == 1 || isNegligible(m_rv1[l])) return l;
            if (isNegligible(m_w[l - 1])) {
                cancel(l, k);
                return l;
            }
        }
    }

    // Takes out rv1[l] in front of which w is 0. The off-diagonal elements are scaled by c on the way, as
    // published; left as they are, a block of two or more behind a vanished value comes out wrong.
    void cancel(std::size_t l, std::size_t k) {
        double c = 0, s = 1;
        for (std::size_t i = l; i <= k; ++i) {
            const double f = s * m_rv1[i];
            m_rv1[i] = c * m_rv1[i];
            if (isNegligible(f)) continue;
            const double g = m_w[i];
            double h = Safe_Hypot(f, g);
            m_w[i] = h;
            h = 1 / h;
            c = g * h;
            s = -f * h;
            rotateLeft(l - 1, i, c, s);
        }
    }

    // A QR sweep with the shift from the lower right corner.
    void sweepDown(std::size_t l, std::size_t k) {
        const double z = m_w[k];
        const std::size_t nm = k - 1;
        double x = m_w[l], y = m_w[nm], g = m_rv1[nm], h = m_rv1[k];
        double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
        g = Safe_Hypot(f, 1);
        f = ((x - z) * (x + z) + h * (y / (f + withSign(g, f)) - h)) / x;
        double c = 1, s = 1;
        for (std::size_t j = l; j <= nm; ++j) {
            const std::size_t i = j + 1;
            g = m_rv1[i];
            y = m_w[i];
            h = s * g;
            g = c * g;
            double length = Safe_Hypot(f, h);
            m_rv1[j] = length;
            c = f / length;
            s = h / length;
            f = x * c + g * s;
            g = g * c - x * s;
            h = y * s;
            y = y * c;
            rotateRight(j, i, c, s);
            length = Safe_Hypot(f, h);
            m_w[j] = length;
            if (length != 0) {
                length = 1 / length;
                c = f * length;
                s = h * length;
            }
            f = c * g + s * y;
            x = c * y - s * g;
            rotateLeft(j, i, c, s);
        }
        m_rv1[l] = 0;
        m_rv1[k] = f;
        m_w[k] = x;
    }

    double *m_a;
    std::size_t m_m, m_n;
    double *m_w, *m_v, *m_rv1;
    Workspace m_space;
    double *m_ut, *m_vt;  // the columns of U and V one after the other
    double *m_sums;       // n
    double m_anorm = 0;   // the largest of |w| + |rv1| after the reduction
};

}  // namespace

double Safe_Hypot(double a, double b) {
    const double A = std::fabs(a), B = std::fabs(b);
    if (A > B) {
        const double ratio = B / A;
        return A * std::sqrt(1 + ratio * ratio);
    }
    if (B == 0) return 0;
    const double ratio = A / B;
    return B * std::sqrt(1 + ratio * ratio);
}

void Svd_Decompose(double *a, std::int32_t m, std::int32_t n, double *w, double *v, double *rv1) {
    if (n < 1) return;
    const auto rows = static_cast<std::size_t>(std::max(m, 0)), columns = static_cast<std::size_t>(n);
    if (rows == 3 && columns == 3)
        Decomposition<3, 3>(a, rows, columns, w, v, rv1).run();
    else if (rows == 4 && columns == 4)
        Decomposition<4, 4>(a, rows, columns, w, v, rv1).run();
    else
        Decomposition<0, 0>(a, rows, columns, w, v, rv1).run();
}

double cutSingularValues(double *w, std::int32_t n) {
    double largest = 0;
    for (std::int32_t j = 1; j <= n; ++j)
        if (w[j] > largest) largest = w[j];
    const double threshold = largest * kCut;
    for (std::int32_t j = 1; j <= n; ++j)
        if (w[j] < threshold) w[j] = 0;
    return threshold;
}

void Svd_BackSubstitute(const double *u, const double *w, const double *v, const double *b, double *tmp,
                        std::int32_t m, std::int32_t n, double *x) {
    if (n < 1) return;
    std::fill_n(tmp, n, 0.0);
    for (std::int32_t i = 0; i < m; ++i)
        addScaled(tmp, u + std::ptrdiff_t{i} * n, b[i], static_cast<std::size_t>(n));
    for (std::int32_t j = 0; j < n; ++j)
        tmp[j] = w[j + 1] != 0 ? tmp[j] / w[j + 1] : 0;
    for (std::int32_t j = 0; j < n; ++j) {
        double sum = 0;
        for (std::int32_t k = 0; k < n; ++k)
            sum += v[std::ptrdiff_t{j} * n + k] * tmp[k];
        x[j] = sum;
    }
}

}  // namespace kv::detail
