#pragma once

// The dot gain fit step by step, as it is defined: every candidate solves its systems anew and scores all
// channels. What the library's own form is held against, in tests and benchmarks.

#include <kvbase/numerics/kv_math.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace plain {

inline void fitDotgain(const float *tones, const float *xyz, int count, int channel, double *coefficients,
                       float *scales, const float *limits) {
    std::fill_n(scales, 3, 1.0F);
    std::fill_n(coefficients, 4, 0.0);
    if (count <= 2) return;
    std::vector<std::vector<float>> gain(3, std::vector<float>(static_cast<std::size_t>(count)));
    const auto at = [xyz](int i, int k) { return xyz[3 * i + k]; };
    const auto gainOf = [&gain](int k, int i) -> float & {
        return gain[static_cast<std::size_t>(k)][static_cast<std::size_t>(i)];
    };
    for (int k = 0; k < 3; ++k)
        for (int i = 0; i < count; ++i)
            gainOf(k, i) = (at(0, k) - at(i, k)) / (at(0, k) - at(count - 1, k)) - tones[i];
    const auto gm = [&](int i) { return gainOf(channel, i); };
    float total = 0;
    for (int i = 0; i < count; ++i)
        total += gm(i);
    int m = 1;
    for (int i = 2; i <= count - (total > 0 ? 2 : 3); ++i)
        if (total > 0 ? gm(i) > gm(m) : gm(i) < gm(m)) m = i;
    if (std::fabs(gm(m)) < 0.00001F) return;
    const float d0 = tones[m - 1] - tones[m], d1 = tones[m + 1] - tones[m];
    const float e0 = gm(m - 1) - gm(m), e1 = gm(m + 1) - gm(m), w = d1 * d0 * d1 - d1 * d0 * d0;
    const float A = (e1 * d0 - e0 * d1) / w, B = (e0 * d1 * d1 - e1 * d0 * d0) / w;
    float peakTone = tones[m], peakGain = gm(m);
    if (A != 0) {
        peakTone = tones[m] - B / (2 * A);
        const float dx = peakTone - tones[m];
        peakGain = gm(m) + A * dx * dx + B * dx;
    }
    double best = 1e10;
    for (int p = -100; p <= 99; ++p) {
        for (int q = -100; q <= 99; ++q) {
            const float pa = static_cast<float>(p) / 1000 + peakTone,
                        pg = static_cast<float>(q) / 2000 + peakGain;
            if (!(pa > 0) || !(pa < 100)) continue;
            const double a1 = pa, a2 = a1 * a1, a3 = a2 * a1, a4 = a2 * a2;
            const double rows[] = {1, 1, 1, a3, a2, a1, 3 * a2, 2 * a1, 1}, right[] = {0, pg, 0};
            double x[3];
            Least_Squares(rows, right, 3, 3, x);
            const double level[] = {1, 1, 1, 1, a4, a3, a2, a1, 4 * a3, 3 * a2, 2 * a1, 1};
            double *basis = nullptr, u[4];
            std::int32_t columns = 0;
            Null_Space(level, 3, 4, &basis, &columns);
            for (int i = 0; i < 4; ++i)
                u[i] = basis[i * columns];
            delete[] basis;
            double lo = -100, hi = 100;
            for (int k = 0; k <= 100; ++k) {
                const double a = k / 100.0, aa = a * a, aaa = aa * a;
                const double r = 1 + 3 * x[0] * aa + 2 * x[1] * a + x[2];
                const double v = 4 * u[0] * aaa + 3 * u[1] * aa + 2 * u[2] * a + u[3];
                if (v > 0) lo = std::max(lo, -r / v);
                if (v < 0) hi = std::min(hi, -r / v);
            }
            double c[4] = {};
            const auto quartic = [](const double *f, double a) {
                const double aa = a * a;
                return f[0] * (aa * aa) + f[1] * (aa * a) + f[2] * aa + f[3] * a;
            };
            if (hi > lo) {
                double products = 0, squares = 0;
                for (int i = 1; i <= count - 2; ++i) {
                    const double a = tones[i], aa = a * a, n = quartic(u, a);
                    products += (gm(i) - (x[0] * (aa * a) + x[1] * aa + x[2] * a)) * n;
                    squares += n * n;
                }
                double t = squares > 0 ? products / squares : 0;
                t = t < lo ? lo : std::min(hi, t);
                c[0] = t * u[0];
                c[1] = t * u[1] + x[0];
                c[2] = t * u[2] + x[1];
                c[3] = t * u[3] + x[2];
            }
            float D = 0, s[3] = {};
            const auto f = [&](int i) { return static_cast<float>(quartic(c, tones[i])); };
            for (int i = 0; i < count; ++i)
                D += f(i) * f(i);
            for (int k = 0; k < 3 && D > 0; ++k) {
                float products = 0;
                for (int i = 0; i < count; ++i)
                    products += f(i) * gainOf(k, i);
                s[k] = k == channel ? 1 : products / D;
                if (s[k] < 0) {
                    for (int j = 0; j <= 100; ++j) {
                        const double a = j / 100.0, aa = a * a;
                        const auto slope =
                            static_cast<float>(4 * c[0] * (aa * a) + 3 * c[1] * aa + 2 * c[2] * a + c[3]);
                        if (s[k] * slope < -1) s[k] = -1 / slope;
                    }
                } else if (s[k] > limits[1]) {
                    s[k] = limits[1];
                }
            }
            double errors[3] = {};
            for (int k = 0; k < 3; ++k) {
                for (int i = 0; i < count; ++i) {
                    const double e = s[k] * quartic(c, tones[i]) + tones[i];
                    const double off = (1 - e) * at(0, k) + e * at(count - 1, k) - at(i, k);
                    errors[k] += off * off;
                }
                errors[k] = std::sqrt(errors[k] / count);
            }
            if (!(errors[channel] < best)) continue;
            best = errors[channel];
            std::copy_n(c, 4, coefficients);
            std::copy_n(s, 3, scales);
        }
    }
}

}  // namespace plain
