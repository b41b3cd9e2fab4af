#include "kvbase/color/kv_color_difference.h"

#include "adt/color/plain_difference.h"

namespace {

using kv::detail::DifferenceWeights;

using PairForm = float (*)(const float *lab1, const float *lab2, const DifferenceWeights &weights);

void overPairs(PairForm form, const float *lab1, const float *lab2, std::int32_t count, float *out,
               const DifferenceWeights &weights) {
    for (; count > 0; --count, lab1 += 3, lab2 += 3)
        *out++ = form(lab1, lab2, weights);
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
    overPairs(kv::detail::plainDeltaEab, lab1, lab2, count, out, {});
}

void ColorDifferenceDeltaE94(float *lab1, float *lab2, std::int32_t count, float *out, float kL, float kC,
                             float kH) {
    overPairs(kv::detail::plainDeltaE94, lab1, lab2, count, out, {kL, kC, kH});
}

void ColorDifferenceDeltaECMC(float *lab1, float *lab2, std::int32_t count, float *out, float l, float c) {
    overPairs(kv::detail::plainDeltaECmc, lab1, lab2, count, out, {l, c, 1});
}

void ColorDifferenceDeltaE2000(float *lab1, float *lab2, std::int32_t count, float *out, float kL, float kC,
                               float kH) {
    overPairs(kv::detail::plainDeltaE2000, lab1, lab2, count, out, {kL, kC, kH});
}
