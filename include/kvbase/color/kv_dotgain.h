#pragma once

#include <cstdint>

#include "kvbase/base/export.h"

/// Fits dot gain curves to the measured tints of one ink, by the model of Murray and Davies in each of X, Y
/// and Z: the effective area of a tint is its distance from paper as a part of that of the solid. Its gain
/// over the nominal area a is s[k] * g(a) for channel k, with one curve of the shape
///
///     g(a) = c0 * a^4 + c1 * a^3 + c2 * a^2 + c3 * a
///
/// for all three. The curve passes through no gain at the solid, its peak is looked for on a grid of 200 by
/// 200 points round the peak of the measured gains (steps of 0.001 in area and 0.0005 in gain), and a + g(a)
/// doesn't fall between 0 and 1. The peak whose curve has the least root mean square error in the main
/// channel wins, the first of equals. Gains are taken in single precision, the curves in double.
///
/// tones         count nominal areas, 0 to 1, ascending: paper first, the solid last
/// xyz           count triples X, Y, Z on any one scale; paper and solid must differ in each
/// channel       the main channel, 0, 1 or 2 for X, Y or Z and nothing else: in which the ink absorbs most
/// coefficients  gets c0, c1, c2, c3
/// scales        gets s[0], s[1], s[2]; that of the main channel is 1, if limits allows
/// limits        two floats; limits[1] is the largest scale that is positive, limits[0] is not read
///
/// A scale below 0 is brought so near to 0 that the effective area of its channel doesn't fall. Fewer than
/// three tints, gains that vanish at their peak, and tints for which no peak of the grid lies above 0, give
/// no gain: coefficients of 0 and scales of 1; where no curve of the grid rises, the scales are 0.
/// Not-a-numbers in the input do the same or go on into the
/// results. The inputs are only read. Throws what Least_Squares throws.
///
/// Source: Murray, J. Franklin Inst. 221
/// (1936) 721-744, for the model; the shape of the curve and the search are this library's own.
KV_EXPORT void FitDotgainFromXYZ(float *tones, float *xyz, std::int32_t count, std::int32_t channel,
                                 double *coefficients, float *scales, float *limits);
