#pragma once

// The difference between two CIELAB colours by four published formulas. Free functions without state, for any
// thread; none of them raises.
//
// All four are symmetric: exchanging the colours gives the same result up to rounding. For CMC and CIE94 this
// departs from the publications, which take lightness, chroma and hue of a reference colour; here the means
// of the pair stand in their place. Hues are counted from 0 below 2 pi here (those of kv_colorimetry.h lie
// above 0 up to 2 pi).
//
// The array functions work on several pairs at a time with what the processor has. A pair's result does not
// depend on that, nor on its place or on count. It lies within 2e-4 + 1e-5 * result of the formula evaluated
// step by step in single precision, for weights around 1. Pairs whose coordinates lie beyond 256 in
// magnitude, and pairs so close to a branch of the formula that single precision decides it, are evaluated
// step by step.

#include <cstdint>

#include "kvbase/base/export.h"

/// Which formula, and its weights.
class KV_ColorDifferenceFormula {
public:
    std::int32_t formula = 0;  ///< 0 CIE 1976, 1 CIE94, 2 CMC(l:c), 3 CIEDE2000; any other counts as 0
    float kL = 1;              ///< weight of lightness; l of CMC
    float kC = 1;              ///< weight of chroma; c of CMC
    float kH = 1;              ///< weight of hue, which CMC has not
};

/// The difference of one pair by the formula: what the array functions give for it.
/// lab1, lab2  L*, a*, b*
KV_EXPORT float ColorDifference(float *lab1, float *lab2, KV_ColorDifferenceFormula formula);

// The differences of count pairs:
// lab1, lab2  L*, a*, b* interleaved, 3 * count floats; L* is 0 to 100. Only read.
// out         count floats, which must not overlap the colours. A count of 0 or below leaves it untouched.
// The weights are not tested: one of 0 divides by zero, and gives infinite or undefined floats.

/// CIE 1976: the distance in CIELAB. Exactly what the plain sequence of operations gives.
/// Source: CIE 15:2004, 8.2.1.
KV_EXPORT void ColorDifferenceDeltaEab(float *lab1, float *lab2, std::int32_t count, float *out);

/// CIE94. SC and SH come from the arithmetic mean of the chromas.
/// Source: CIE 116-1995, Industrial Colour-Difference Evaluation.
KV_EXPORT void ColorDifferenceDeltaE94(float *lab1, float *lab2, std::int32_t count, float *out, float kL,
                                       float kC, float kH);

/// CMC(l:c). SL, SC and SH come from the means of lightness, chroma and hue.
/// Source: Clarke, McDonald, Rigg, J. Soc. Dyers Colour. 100 (1984) 128-132; ISO 105-J03.
KV_EXPORT void ColorDifferenceDeltaECMC(float *lab1, float *lab2, std::int32_t count, float *out, float l,
                                        float c);

/// CIEDE2000. The publication's special mean hue of a pair with a neutral colour is not applied: the hue of a
/// neutral colour is 0, and the mean is formed like any other. The hue difference is 0 all the same, so that
/// only T and the rotation see it.
/// Source: Sharma, Wu, Dalal, Color Res. Appl. 30 (2005) 21-30; ISO/CIE 11664-6.
KV_EXPORT void ColorDifferenceDeltaE2000(float *lab1, float *lab2, std::int32_t count, float *out, float kL,
                                         float kC, float kH);
