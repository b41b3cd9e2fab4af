#pragma once

// Small dense linear algebra: inverses, the singular value decomposition and what rests on it.
//
// A matrix is a flat array in row-major order: element (r, c) of m rows by n columns stands at r * n + c.
// Inputs are only read; results must not lie over inputs unless a text says so. Sizes below 1 are empty.
// Exported undecorated. Functions work on the caller's arrays, take no heap memory for small systems (about
// 2,000 elements in all; but for the basis that Null_Space gives, and Constrained_Least_Squares asks it for),
// and may run on any thread at once.
//
// Singular values below 1e-10 of the largest count as 0 (the cut). They come from the decomposition of Golub
// and Reinsch (Numer. Math. 14 (1970) 403-420) by Householder reduction and implicit-shift QR sweeps, with at
// most 29 sweeps for each value. Where a singular value vanishes in front of a block, the cancellation scales
// the off-diagonal elements by c, as published: left as they are, results come out wrong. An infinity or a
// not-a-number in the input ends in KV_ERR_NO_CONVERGENCE or goes on into the result; it never makes a number
// look like a good one, and nothing runs on for ever.

#include <cstdint>

#include "kvbase/base/export.h"

extern "C" {

/// The inverse of an n by n matrix, by Gauss-Jordan elimination with partial pivoting. 1, or 0 when a pivot
/// is exactly 0: inv then holds what the elimination had reached, columns in order. Of equal pivots the first
/// is taken. A not-a-number is never chosen as a pivot
/// while there is another element. inv may be a.
KV_EXPORT std::int32_t Matrix_Inverse(const double *a, std::int32_t n, double *inv);
/// The inverse of a 3 by 3 matrix: its adjugate by its determinant, all in single precision. Leaves inv as it
/// is unless the determinant's magnitude is above 1e-10. inv may be a.
KV_EXPORT void MatrixInverse(const float *a, float *inv);

/// The x of n entries that minimises |a x - b|, for an m by n matrix; of several the shortest.
/// Throws KV_Exception: KV_ERR_BAD_INPUT when there are fewer rows than columns; KV_ERR_NO_CONVERGENCE. x is
/// then undefined.
KV_EXPORT void Least_Squares(const double *a, const double *b, std::int32_t m, std::int32_t n, double *x);

/// The same under p linear conditions c x = d, c being p by n, by the null-space method. The particular
/// solution comes from the first element of c beyond 1e-10 when p is 1, else from the inverse of its first p
/// columns. When these have none, or there are more conditions than unknowns, it is the shortest x that meets
/// the conditions best. With p below 1 there are no conditions. A condition that is not finite may count for
/// nothing. Throws as Least_Squares does.
KV_EXPORT void Constrained_Least_Squares(const double *a, const double *b, std::int32_t m, std::int32_t n,
                                         double *x, const double *c, const double *d, std::int32_t p);

/// A basis of the solutions of c x = 0, c being p by n: the columns of the n by *k matrix *z, which the
/// caller releases with delete[].
///
/// With p = 1, *k is n - 1, and column i holds c[i + 1] at row i and -c[i] at row i + 1: at right angles to
/// c, but neither normalised nor at right angles to each other, and zero where c has zeros. Else they are the
/// columns of V, orthonormal, whose singular values lie below the cut, in their order; there are none for a c
/// of zeros. Throws KV_Exception (KV_ERR_NO_CONVERGENCE), with *z and *k untouched.
KV_EXPORT void Null_Space(const double *c, std::int32_t p, std::int32_t n, double **z, std::int32_t *k);

/// The eigenvalues and eigenvectors of a symmetric positive semi-definite matrix of m by m (n is m), as its
/// singular values, after the cut, and the columns of U; in the order in which the decomposition yields them,
/// not sorted. vectors is m by m, eigenvector j in column j.
///
/// Of several exactly equal values, those that the cut made 0 among them, only the last one is stored: the
/// others' entries of values and vectors stay as the caller left them, so fill both before.
/// Throws KV_Exception, with the results untouched: KV_ERR_BAD_INPUT when n is not m; KV_ERR_NO_CONVERGENCE.
KV_EXPORT void Eigen(const double *a, std::int32_t m, std::int32_t n, double *values, double *vectors);

}  // extern "C"
