#pragma once

// Tone curves as polynomials: y(t) = y0 + c1 t + c2 t^2 + ... with t = (x - x0) / (x1 - x0), where x0 and x1
// are the first and the last abscissa of the fit and y0 its first ordinate. Exported undecorated; any thread.

#include <cstdint>

#include "kvbase/base/export.h"

extern "C" {

/// Fits such a curve to count points in least squares; the first point is met exactly. A curve whose
/// derivative changes its sign more often than a tone curve's does is refused, and the next lower order
/// tried.
///
/// x, y         count abscissas and ordinates
/// constrained  whether the last point is to be met, too
/// order        1 to 4; any other asks for 1 up to 3 points, 2 up to 5, 3 up to 7, else 4. Receives the
///              order of the curve that was fitted.
/// coefficients receives c1 to c_order, which the caller releases with delete[]
///
/// Refused are an order 3 with both extrema, and an order 4 with two or three, inside the open interval (0,
/// 1); for a curve that isn't constrained, inside (x[0], x[count - 1]), though t has been normalised.
///
/// Always true. Throws KV_Exception: KV_ERR_BAD_INPUT for fewer points behind the first one than the order,
/// and when the first and the last abscissa do not differ; KV_ERR_NO_CONVERGENCE. order and coefficients are
/// then untouched.
KV_EXPORT bool FitPoly(const float *x, const float *y, std::uint16_t count, bool constrained,
                       std::int32_t *order, double **coefficients);

/// The value of such a curve at x, which may lie outside x0 to x1. t and its powers are taken in single
/// precision, and so is the sum; each product with a coefficient is taken in double. An order of 0 gives y0.
KV_EXPORT void UsePoly(float x, float *y, std::int32_t order, const double *coefficients, float x0, float x1,
                       float y0);
/// The same in double throughout.
KV_EXPORT void UsePolyd(double x, double *y, std::int32_t order, const double *coefficients, double x0,
                        double x1, double y0);

}  // extern "C"
