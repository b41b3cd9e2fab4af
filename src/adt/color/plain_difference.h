#pragma once

// The colour differences step by step, one pair at a time, in the precision and order of operations that
// define them: what the vector forms are held against, and what they leave to these when a pair lies on a
// branch. The arrays and weights are those of kv_color_difference.h.

namespace kv::detail {

/// The weights of lightness, chroma and hue. CMC calls the first two l and c, and has no third.
struct DifferenceWeights {
    float kL = 1, kC = 1, kH = 1;
};

float plainDeltaEab(const float *lab1, const float *lab2, const DifferenceWeights &weights);
float plainDeltaE94(const float *lab1, const float *lab2, const DifferenceWeights &weights);
float plainDeltaECmc(const float *lab1, const float *lab2, const DifferenceWeights &weights);
float plainDeltaE2000(const float *lab1, const float *lab2, const DifferenceWeights &weights);

}  // namespace kv::detail
