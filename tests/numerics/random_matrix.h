#pragma once

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

// Matrices, row-major, that are hard in one way or another; always the same.

using Matrix = std::vector<double>;

inline Matrix randomMatrix(std::mt19937 &random, int m, int n) {
    Matrix a(static_cast<std::size_t>(m) * static_cast<std::size_t>(n));
    for (double &x : a)
        x = static_cast<double>(random()) / 2147483648.0 - 1;
    return a;
}

inline Matrix product(const Matrix &a, const Matrix &b, int m, int k, int n) {
    Matrix c(static_cast<std::size_t>(m * n));
    for (int i = 0; i < m; ++i)
        for (int j = 0; j < n; ++j)
            for (int l = 0; l < k; ++l)
                c[static_cast<std::size_t>(i * n + j)] +=
                    a[static_cast<std::size_t>(i * k + l)] * b[static_cast<std::size_t>(l * n + j)];
    return c;
}

inline Matrix transposed(const Matrix &a, int m, int n) {
    Matrix t(a.size());
    for (int i = 0; i < m; ++i)
        for (int j = 0; j < n; ++j)
            t[static_cast<std::size_t>(j * m + i)] = a[static_cast<std::size_t>(i * n + j)];
    return t;
}

/// Full rank, less than full rank, a column of zeros, small whole numbers with many ties, all zero; each in
/// one of the scales.
inline Matrix hardMatrix(std::mt19937 &random, int m, int n,
                         const std::vector<double> &scales = {1, 1, 1, 1e-150, 1e150}) {
    Matrix a = randomMatrix(random, m, n);
    const int rank = 1 + static_cast<int>(random() % static_cast<unsigned>(n));
    switch (random() % 6) {
    case 0:
        a = product(randomMatrix(random, m, rank), randomMatrix(random, rank, n), m, rank, n);
        break;
    case 1:
        for (int i = 0, zero = static_cast<int>(random() % static_cast<unsigned>(n)); i < m; ++i)
            a[static_cast<std::size_t>(i * n + zero)] = 0;
        break;
    case 2:
        for (double &x : a)
            x = static_cast<double>(random() % 3);
        break;
    case 3:
        if (random() % 8 == 0) a.assign(a.size(), 0);
        break;
    default:
        break;
    }
    const double scale = scales[random() % scales.size()];
    for (double &x : a)
        x *= scale;
    return a;
}

inline double norm(const std::vector<double> &v) {
    double largest = 0, sum = 0;
    for (const double x : v)
        largest = std::max(largest, std::fabs(x));
    if (largest == 0) return 0;
    for (const double x : v)
        sum += x / largest * (x / largest);
    return largest * std::sqrt(sum);
}
