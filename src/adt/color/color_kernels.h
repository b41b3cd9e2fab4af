#pragma once

#include <cstddef>
#include <span>

#include "adt/color/plain_difference.h"
#include "kvbase/color/kv_ct_icc_cam.h"

namespace kv::detail {

/// The array forms of colour science for one kind of processor. Arrays, weights and conditions are those of
/// the public functions. A colour's result depends on nothing but the colour and the conditions: not on its
/// place, the count, or the kind of processor, but for the plain form, from which the others differ as little
/// as the public functions promise.
struct ColorKernels {
    using Difference = void (*)(const float *lab1, const float *lab2, std::size_t count, float *out,
                                const DifferenceWeights &weights);
    using Cielab = void (*)(const float (&white)[3], const float *in, float *out, std::size_t count);
    using IccCam = void (*)(const IccCamModel &model, const float *in, float *out, std::size_t count);

    const char *name;
    Difference deltaEab, deltaE94, deltaECmc, deltaE2000;
    Cielab xyzToLab, labToXyz;
    IccCam xyzToJab, jabToXyz;
};

/// The fastest for this processor.
const ColorKernels &colorKernels();

/// All that this processor can run, the fastest last.
std::span<const ColorKernels *const> usableColorKernels();

/// One colour at a time, on any processor.
extern const ColorKernels kPlainKernels;

}  // namespace kv::detail
