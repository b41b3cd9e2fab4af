// The plain forms, one colour after the other: what the kernels of lanes are tested against, and what runs
// where the compiler has no vectors.

#include "adt/color/color_kernels.h"
#include "adt/color/plain_cielab.h"

namespace kv::detail {
namespace {

template <auto form>
void overPairs(const float *lab1, const float *lab2, std::size_t count, float *out,
               const DifferenceWeights &weights) {
    for (; count > 0; --count, lab1 += 3, lab2 += 3)
        *out++ = form(lab1, lab2, weights);
}

template <auto form>
void overColors(const float (&white)[3], const float *in, float *out, std::size_t count) {
    for (; count > 0; --count, in += 3, out += 3)
        form(white, in, out);
}

template <auto form>
void overColors(const IccCamModel &model, const float *in, float *out, std::size_t count) {
    for (; count > 0; --count, in += 3, out += 3)
        (model.*form)(in, out);
}

}  // namespace

constinit const ColorKernels kPlainKernels = {"plain",
                                              overPairs<plainDeltaEab>,
                                              overPairs<plainDeltaE94>,
                                              overPairs<plainDeltaECmc>,
                                              overPairs<plainDeltaE2000>,
                                              overColors<plainXyzToLab>,
                                              overColors<plainLabToXyz>,
                                              overColors<&IccCamModel::XyzToJab>,
                                              overColors<&IccCamModel::JabToXyz>};

}  // namespace kv::detail
