#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

// The decomposition as it is published, step by step, on one element after the other. The library's must have
// the same bits. False when it doesn't converge.

inline double plainHypot(double a, double b) {
    const double x = std::fabs(a), y = std::fabs(b);
    if (x > y) return x * std::sqrt(1 + (y / x) * (y / x));
    return y == 0 ? 0 : y * std::sqrt(1 + (x / y) * (x / y));
}

inline bool plainSvd(double *a, int m, int n, double *w, double *v) {
    const auto A = [&](int r, int c) -> double & { return a[(r - 1) * n + c - 1]; };
    const auto V = [&](int r, int c) -> double & { return v[(r - 1) * n + c - 1]; };
    const auto sign = [](double x, double y) { return y >= 0 ? std::fabs(x) : -std::fabs(x); };
    std::vector<double> rv1(static_cast<std::size_t>(n) + 1);
    double g = 0, scale = 0, anorm = 0, s = 0, f = 0, h = 0;
    for (int i = 1; i <= n; ++i) {
        const int l = i + 1;
        rv1[static_cast<std::size_t>(i)] = scale * g;
        g = s = scale = 0;
        if (i <= m) {
            for (int k = i; k <= m; ++k)
                scale += std::fabs(A(k, i));
            if (scale != 0) {
                for (int k = i; k <= m; ++k) {
                    A(k, i) /= scale;
                    s += A(k, i) * A(k, i);
                }
                f = A(i, i);
                g = -sign(std::sqrt(s), f);
                h = f * g - s;
                A(i, i) = f - g;
                for (int j = l; j <= n; ++j) {
                    s = 0;
                    for (int k = i; k <= m; ++k)
                        s += A(k, i) * A(k, j);
                    f = s / h;
                    for (int k = i; k <= m; ++k)
                        A(k, j) += f * A(k, i);
                }
                for (int k = i; k <= m; ++k)
                    A(k, i) *= scale;
            }
        }
        w[i] = scale * g;
        g = s = scale = 0;
        if (i <= m && i != n) {
            for (int k = l; k <= n; ++k)
                scale += std::fabs(A(i, k));
            if (scale != 0) {
                for (int k = l; k <= n; ++k) {
                    A(i, k) /= scale;
                    s += A(i, k) * A(i, k);
                }
                f = A(i, l);
                g = -sign(std::sqrt(s), f);
                h = f * g - s;
                A(i, l) = f - g;
                for (int k = l; k <= n; ++k)
                    rv1[static_cast<std::size_t>(k)] = A(i, k) / h;
                for (int j = l; j <= m; ++j) {
                    s = 0;
                    for (int k = l; k <= n; ++k)
                        s += A(j, k) * A(i, k);
                    for (int k = l; k <= n; ++k)
                        A(j, k) += s * rv1[static_cast<std::size_t>(k)];
                }
                for (int k = l; k <= n; ++k)
                    A(i, k) *= scale;
            }
        }
        anorm = std::max(anorm, std::fabs(w[i]) + std::fabs(rv1[static_cast<std::size_t>(i)]));
    }
    for (int i = n, l = n + 1; i >= 1; l = i--) {
        if (i < n) {
            if (g != 0) {
                for (int j = l; j <= n; ++j)
                    V(j, i) = (A(i, j) / A(i, l)) / g;
                for (int j = l; j <= n; ++j) {
                    s = 0;
                    for (int k = l; k <= n; ++k)
                        s += A(i, k) * V(k, j);
                    for (int k = l; k <= n; ++k)
                        V(k, j) += s * V(k, i);
                }
            }
            for (int j = l; j <= n; ++j)
                V(i, j) = V(j, i) = 0;
        }
        V(i, i) = 1;
        g = rv1[static_cast<std::size_t>(i)];
    }
    for (int i = n; i >= 1; --i) {
        const int l = i + 1;
        g = w[i];
        for (int j = l; j <= n; ++j)
            A(i, j) = 0;
        if (g != 0) {
            g = 1 / g;
            for (int j = l; j <= n; ++j) {
                s = 0;
                for (int k = l; k <= m; ++k)
                    s += A(k, i) * A(k, j);
                f = (s / A(i, i)) * g;
                for (int k = i; k <= m; ++k)
                    A(k, j) += f * A(k, i);
            }
            for (int j = i; j <= m; ++j)
                A(j, i) *= g;
        } else {
            for (int j = i; j <= m; ++j)
                A(j, i) = 0;
        }
        A(i, i) += 1;
    }
    const auto turn = [](double &y, double &z, double c, double sine) {
        const double former = y;
        y = former * c + z * sine;
        z = z * c - former * sine;
    };
    for (int k = n; k >= 1; --k) {
        for (int its = 0;; ++its) {
            int l = k;
            bool cancels = false;
            for (;; --l) {
                if (std::fabs(rv1[static_cast<std::size_t>(l)]) + anorm == anorm) break;
                if (std::fabs(w[l - 1]) + anorm == anorm) {
                    cancels = true;
                    break;
                }
            }
            double c = 0;
            s = 1;
            for (int i = l; cancels && i <= k; ++i) {
                f = s * rv1[static_cast<std::size_t>(i)];
                rv1[static_cast<std::size_t>(i)] *= c;
                if (std::fabs(f) + anorm == anorm) continue;
                g = w[i];
                w[i] = plainHypot(f, g);
                h = 1 / w[i];
                c = g * h;
                s = -f * h;
                for (int j = 1; j <= m; ++j)
                    turn(A(j, l - 1), A(j, i), c, s);
            }
            double z = w[k];
            if (l == k) {
                if (z < 0) {
                    w[k] = -z;
                    for (int j = 1; j <= n; ++j)
                        V(j, k) = -V(j, k);
                }
                break;
            }
            if (its == 29) return false;
            double x = w[l], y = w[k - 1];
            g = rv1[static_cast<std::size_t>(k - 1)];
            h = rv1[static_cast<std::size_t>(k)];
            f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
            g = plainHypot(f, 1);
            f = ((x - z) * (x + z) + h * (y / (f + sign(g, f)) - h)) / x;
            c = s = 1;
            for (int j = l; j < k; ++j) {
                g = rv1[static_cast<std::size_t>(j + 1)];
                y = w[j + 1];
                h = s * g;
                g = c * g;
                z = plainHypot(f, h);
                rv1[static_cast<std::size_t>(j)] = z;
                c = f / z;
                s = h / z;
                f = x * c + g * s;
                g = g * c - x * s;
                h = y * s;
                y = y * c;
                for (int jj = 1; jj <= n; ++jj)
                    turn(V(jj, j), V(jj, j + 1), c, s);
                z = plainHypot(f, h);
                w[j] = z;
                if (z != 0) {
                    z = 1 / z;
                    c = f * z;
                    s = h * z;
                }
                f = c * g + s * y;
                x = c * y - s * g;
                for (int jj = 1; jj <= m; ++jj)
                    turn(A(jj, j), A(jj, j + 1), c, s);
            }
            rv1[static_cast<std::size_t>(l)] = 0;
            rv1[static_cast<std::size_t>(k)] = f;
            w[k] = x;
        }
    }
    return true;
}
