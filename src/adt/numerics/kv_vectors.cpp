#include "kvbase/numerics/kv_vectors.h"

#include "adt/numerics/cross3.h"

namespace {

// a - b.
template <int D>
void difference(const double *a, const double *b, double *out) {
    for (int i = 0; i < D; ++i)
        out[i] = a[i] - b[i];
}

template <int D>
double dot(const double *a, const double *b) {
    double sum = a[0] * b[0];
    for (int i = 1; i < D; ++i)
        sum += a[i] * b[i];
    return sum;
}

template <int D>
double dotOfPoints(const double *a, const double *b, const double *c) {
    double r[D], s[D];
    difference<D>(a, c, r);
    difference<D>(b, c, s);
    return dot<D>(r, s);
}

// The determinant of three rows, along the first one, of the components i, j, k.
double minorOf(const double *r, const double *s, const double *t, int i, int j, int k) {
    return r[i] * (s[j] * t[k] - s[k] * t[j]) - r[j] * (s[i] * t[k] - s[k] * t[i]) +
           r[k] * (s[i] * t[j] - s[j] * t[i]);
}

// Widened with its sign; products and sums beyond 64 bits begin again at the other end.
std::uint64_t wide(std::int32_t number) { return static_cast<std::uint64_t>(std::int64_t{number}); }

}  // namespace

double BiVec2(const double *a, const double *b) { return a[0] * b[1] - a[1] * b[0]; }

void Cross2p(const double *a, const double *b, const double *c, double *out) {
    double r[2], s[2];
    difference<2>(a, c, r);
    difference<2>(b, c, s);
    out[0] = BiVec2(r, s);
}

void Cross3v(const double *a, const double *b, double *out) { kv::detail::cross3(a, b, out); }

void BiVec3(const double *a, const double *b, const double *c, double *out) {
    double r[3], s[3];
    difference<3>(a, c, r);
    difference<3>(b, c, s);
    Cross3v(r, s, out);
}

void Cross3p(const double *a, const double *b, const double *c, double *out) { BiVec3(a, b, c, out); }

void BiVec4(const double *a, const double *b, const double *c, double *out) {
    double r[4], s[4];
    difference<4>(a, c, r);
    difference<4>(b, c, s);
    out[0] = r[0] * s[1] - r[1] * s[0];
    out[1] = r[0] * s[2] - r[2] * s[0];
    out[2] = r[0] * s[3] - r[3] * s[0];
    out[3] = r[1] * s[2] - r[2] * s[1];
    out[4] = r[1] * s[3] - r[3] * s[1];
    out[5] = r[2] * s[3] - r[3] * s[2];
}

void TriVec4(const double *a, const double *b, const double *c, const double *d, double *out) {
    double r[4], s[4], t[4];
    difference<4>(a, d, r);
    difference<4>(b, d, s);
    difference<4>(c, d, t);
    out[0] = minorOf(r, s, t, 1, 2, 3);
    out[1] = -minorOf(r, s, t, 0, 2, 3);
    out[2] = minorOf(r, s, t, 0, 1, 3);
    out[3] = -minorOf(r, s, t, 0, 1, 2);
}

double Dot2(const double *a, const double *b, const double *c) { return dotOfPoints<2>(a, b, c); }
double Dot3p(const double *a, const double *b, const double *c) { return dotOfPoints<3>(a, b, c); }
double Dot4p(const double *a, const double *b, const double *c) { return dotOfPoints<4>(a, b, c); }
double Dot3v(const double *a, const double *b) { return dot<3>(a, b); }
double Dot4v(const double *a, const double *b) { return dot<4>(a, b); }
double Dot4B(const double *a, const double *b) { return dot<6>(a, b); }

void vDotB4(const double *a, const double *B, double *out) {
    out[0] = -a[1] * B[0] - a[2] * B[1] - a[3] * B[2];
    out[1] = a[0] * B[0] - a[2] * B[3] - a[3] * B[4];
    out[2] = a[0] * B[1] + a[1] * B[3] - a[3] * B[5];
    out[3] = a[0] * B[2] + a[1] * B[4] + a[2] * B[5];
}

void vDotT4(const double *a, const double *T, double *out) {
    out[0] = a[3] * T[2] + a[2] * T[3];
    out[1] = a[3] * T[1] - a[1] * T[3];
    out[2] = -a[2] * T[1] - a[1] * T[2];
    out[3] = a[0] * T[3] + a[3] * T[0];
    out[4] = a[0] * T[2] - a[2] * T[0];
    out[5] = a[1] * T[0] + a[0] * T[1];
}

void BDotT4(const double *B, const double *T, double *out) {
    out[0] = -B[3] * T[3] - B[4] * T[2] - B[5] * T[1];
    out[1] = B[1] * T[3] + B[2] * T[2] - B[5] * T[0];
    out[2] = B[2] * T[1] - B[0] * T[3] + B[4] * T[0];
    out[3] = -B[0] * T[2] - B[1] * T[1] - B[3] * T[0];
}

double Determinant(const double *m) { return minorOf(m, m + 3, m + 6, 0, 1, 2); }

std::int64_t det(const std::int32_t *m) {
    const auto term = [m](int a, int b, int c) { return wide(m[a]) * wide(m[b]) * wide(m[c]); };
    return static_cast<std::int64_t>(term(0, 4, 8) - term(0, 5, 7) - term(1, 3, 8) + term(1, 5, 6) +
                                     term(2, 3, 7) - term(2, 4, 6));
}

void QProd(const double *p, const double *q, double *out) {
    out[0] = p[0] * q[0] - p[1] * q[1] - p[2] * q[2] - p[3] * q[3];
    out[1] = p[0] * q[1] + p[1] * q[0] - p[2] * q[3] + p[3] * q[2];
    out[2] = p[0] * q[2] + p[2] * q[0] + p[1] * q[3] - p[3] * q[1];
    out[3] = p[0] * q[3] + p[3] * q[0] - p[1] * q[2] + p[2] * q[1];
}

void QRotate(const double *q, const double *e, double *out) {
    const double t0 = -(q[1] * e[0] + q[2] * e[1] + q[3] * e[2]);
    const double t1 = q[0] * e[0] + q[2] * e[2] - q[3] * e[1];
    const double t2 = q[0] * e[1] + q[3] * e[0] - q[1] * e[2];
    const double t3 = q[0] * e[2] + q[1] * e[1] - q[2] * e[0];
    out[0] = q[0] * t1 - q[1] * t0 + q[2] * t3 - q[3] * t2;
    out[1] = q[0] * t2 - q[2] * t0 + q[3] * t1 - q[1] * t3;
    out[2] = q[0] * t3 - q[3] * t0 + q[1] * t2 - q[2] * t1;
}
