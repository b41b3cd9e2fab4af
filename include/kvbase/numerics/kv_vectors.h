#pragma once

// Products of vectors, bivectors, trivectors and quaternions in 2, 3 and 4 dimensions, on the caller's arrays
// of double. A bivector of 4 dimensions has six components, of the index pairs 01, 02, 03, 12, 13, 23; a
// trivector has four; a quaternion has four, the scalar first.
//
// Functions named ...p take points: of points a, b, c and further ones they use the differences to the last
// point. Exported undecorated. Nothing is allocated and nothing fails; not-a-number and infinities go
// through. A result may lie over an input where the text says so, else not. Any thread.

#include <cstdint>

#include "kvbase/base/export.h"

extern "C" {

/// a0 b1 - a1 b0: the signed area of the parallelogram of two vectors of 2 components.
KV_EXPORT double BiVec2(const double *a, const double *b);
/// The same of a - c and b - c, in out[0]. out may lie over an input.
KV_EXPORT void Cross2p(const double *a, const double *b, const double *c, double *out);

/// The cross product (a - c) x (b - c) of points of 3 components.
KV_EXPORT void BiVec3(const double *a, const double *b, const double *c, double *out);
/// BiVec3 by another name.
KV_EXPORT void Cross3p(const double *a, const double *b, const double *c, double *out);
/// The cross product a x b of vectors of 3 components.
KV_EXPORT void Cross3v(const double *a, const double *b, double *out);

/// The bivector (a - c) ^ (b - c) of points of 4 components. Six results.
KV_EXPORT void BiVec4(const double *a, const double *b, const double *c, double *out);
/// The minors D(1,2,3), -D(0,2,3), D(0,1,3), -D(0,1,2) of the rows a - d, b - d, c - d, points of 4
/// components: with these signs a vector normal to the three. Four results; out may lie over an input.
KV_EXPORT void TriVec4(const double *a, const double *b, const double *c, const double *d, double *out);

/// (a - c) . (b - c), for points of 2, 3 and 4 components.
KV_EXPORT double Dot2(const double *a, const double *b, const double *c);
KV_EXPORT double Dot3p(const double *a, const double *b, const double *c);
KV_EXPORT double Dot4p(const double *a, const double *b, const double *c);
/// a . b, for vectors of 3 and 4 components.
KV_EXPORT double Dot3v(const double *a, const double *b);
KV_EXPORT double Dot4v(const double *a, const double *b);
/// a . b, for bivectors of 4 dimensions: six products.
KV_EXPORT double Dot4B(const double *a, const double *b);

/// The inner product of a vector of 4 components and a bivector: a vector in the bivector's plane, at right
/// angles to the part of a that lies in it. Four results.
KV_EXPORT void vDotB4(const double *a, const double *B, double *out);
/// The inner product of a vector of 4 components and a trivector: a bivector, six results. T holds the minors
/// D(1,2,3), D(0,2,3), D(0,1,3), D(0,1,2) without the alternating signs of TriVec4.
KV_EXPORT void vDotT4(const double *a, const double *T, double *out);
/// The inner product of a bivector and such a trivector: a vector, four results.
KV_EXPORT void BDotT4(const double *B, const double *T, double *out);

/// The determinant of 3 rows of 3, expanded along the first row.
KV_EXPORT double Determinant(const double *m);
/// The same of integers. Each product is taken in 64 bits; beyond them the result is the truth modulo 2^64.
KV_EXPORT std::int64_t det(const std::int32_t *m);

/// Hamilton's product q p of two quaternions: q is the left factor.
KV_EXPORT void QProd(const double *p, const double *q, double *out);
/// The vector part of q (0, e) conj(q): e turned by q, which is not normalised here, so |q|^2 scales the
/// result. Three results.
KV_EXPORT void QRotate(const double *q, const double *e, double *out);

}  // extern "C"
