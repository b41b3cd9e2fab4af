#include "kvbase/color/kv_color_difference.h"

#include <cstddef>

#include "adt/color/color_kernels.h"

namespace {

using kv::detail::ColorKernels;
using kv::detail::DifferenceWeights;

void overPairs(ColorKernels::Difference ColorKernels::*formula, const float *lab1, const float *lab2,
               std::int32_t count, float *out, const DifferenceWeights &weights) {
    if (count > 0)
        (kv::detail::colorKernels().*formula)(lab1, lab2, static_cast<std::size_t>(count), out, weights);
}

}  // namespace

float ColorDifference(float *lab1, float *lab2, KV_ColorDifferenceFormula formula) {
    float result = 0;
    switch (formula.formula) {
    case 1:
        ColorDifferenceDeltaE94(lab1, lab2, 1, &result, formula.kL, formula.kC, formula.kH);
        break;
    case 2:
        ColorDifferenceDeltaECMC(lab1, lab2, 1, &result, formula.kL, formula.kC);
        break;
    case 3:
        ColorDifferenceDeltaE2000(lab1, lab2, 1, &result, formula.kL, formula.kC, formula.kH);
        break;
    default:
        result = kv::detail::plainDeltaEab(lab1, lab2, {});
    }
    return result;
}

void ColorDifferenceDeltaEab(float *lab1, float *lab2, std::int32_t count, float *out) {
    overPairs(&ColorKernels::deltaEab, lab1, lab2, count, out, {});
}

void ColorDifferenceDeltaE94(float *lab1, float *lab2, std::int32_t count, float *out, float kL, float kC,
                             float kH) {
    overPairs(&ColorKernels::deltaE94, lab1, lab2, count, out, {kL, kC, kH});
}

void ColorDifferenceDeltaECMC(float *lab1, float *lab2, std::int32_t count, float *out, float l, float c) {
    overPairs(&ColorKernels::deltaECmc, lab1, lab2, count, out, {l, c, 1});
}

void ColorDifferenceDeltaE2000(float *lab1, float *lab2, std::int32_t count, float *out, float kL, float kC,
                               float kH) {
    overPairs(&ColorKernels::deltaE2000, lab1, lab2, count, out, {kL, kC, kH});
}
