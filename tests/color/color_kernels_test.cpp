// The array forms beside the plain ones, which take one colour at a time, over tens of millions of values. No
// value may differ by more than the public functions promise: what lies on a branch is handed to the plain
// form.

#include "adt/color/color_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using kv::detail::ColorKernels;
using kv::detail::DifferenceWeights;
using kv::detail::IccCamModel;
using kv::detail::kPlainKernels;

constexpr std::size_t kBlock = 20011;  // no multiple of any number of lanes
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kBlocks = 10;
#else
constexpr int kBlocks = 100;
#endif

using Numbers = std::vector<float>;

// Values between which something changes, or that arithmetic treats in its own way.
constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kSpecial[] = {0,      -0.0F, 1e-45F, -1e-40F, 1e-30F, -1e-20F, 1e-15F, 1e-5F,
                              -0.01F, 0.5F,  1,      -1,      8,      15.99F,  16,     50,
                              100,    127,   -128,   180,     -256,   300,     599.9F, 600,
                              -601,   1e4F,  -1e10F, 1e20F,   -3e38F, kInf,    -kInf,  NAN};

class Inputs {
public:
    float uniform(float low, float high) {
        return low + (high - low) * static_cast<float>(m_random() >> 8) * 0x1p-24F;
    }
    std::uint32_t pick(std::uint32_t count) { return static_cast<std::uint32_t>(m_random()) % count; }
    float special() { return kSpecial[pick(std::size(kSpecial))]; }
    float signedZero() { return pick(2) == 0 ? 0.0F : -0.0F; }
    // 1, to some units in the last place.
    float nearOne() { return 1 + (static_cast<float>(pick(17)) - 8) * 6e-8F; }

    void lab(float *out) {
        out[0] = uniform(0, 100);
        out[1] = uniform(-128, 128);
        out[2] = uniform(-128, 128);
    }

private:
    std::mt19937 m_random{17};
};

// What the values of a pair or a colour are held to.
enum class Bound { kPromised, kSameBits };

struct Tolerance {
    float absolute, relative;
};
// Of the differences and the appearance model; and of CIELAB, whose a* and b* are differences of doubles.
constexpr Tolerance kSingle = {2e-4F, 1e-5F}, kDouble = {1e-11F, 1.2e-7F};

struct Tally {
    std::size_t beyond = 0;  // those that differ by more than they may
    float worst = 0;         // the largest part of the tolerance that was used up
    std::string worstValues;

    void compare(float plain, float lanes, Tolerance tolerance, Bound bound) {
        if (plain == lanes || (std::isnan(plain) && std::isnan(lanes))) return;
        const float part =
            std::abs(lanes - plain) / (tolerance.absolute + tolerance.relative * std::abs(plain));
        beyond += bound == Bound::kSameBits || !(part <= 1);
        if (part <= worst) return;
        worst = part;
        worstValues = std::to_string(plain) + " and " + std::to_string(lanes);
    }
};

void expectSameBits(const Numbers &a, const Numbers &b, const char *name) {
    for (std::size_t i = 0; i < a.size(); ++i)
        ASSERT_TRUE(std::bit_cast<std::uint32_t>(a[i]) == std::bit_cast<std::uint32_t>(b[i]) ||
                    (std::isnan(a[i]) && std::isnan(b[i])))
            << name << ' ' << i << ": " << a[i] << ' ' << b[i];
}

Bound fillPair(Inputs &inputs, float *lab1, float *lab2) {
    inputs.lab(lab1);
    inputs.lab(lab2);
    switch (inputs.pick(8)) {
    case 0:  // measured and reference
        for (int i = 0; i < 3; ++i)
            lab2[i] = lab1[i] + inputs.uniform(-3, 3);
        return Bound::kPromised;
    case 1: {  // hues that are equal or opposed
        const float scale = inputs.uniform(-2, 2);
        for (int i = 1; i < 3; ++i)
            lab2[i] = lab1[i] * scale * inputs.nearOne();
        return scale < 0 ? Bound::kSameBits : Bound::kPromised;
    }
    case 2: {  // the mean hue at 164 or 345 degrees
        const bool isGreen = inputs.pick(2) == 0;
        const float a = isGreen ? -0.96126170F : 0.96592583F, b = isGreen ? 0.27563736F : -0.25881905F;
        const float along = inputs.uniform(1, 128), across = inputs.uniform(0, 1) * along;
        lab1[1] = along * a - across * b;
        lab1[2] = along * b + across * a;
        lab2[1] = (along * a + across * b) * inputs.nearOne();
        lab2[2] = (along * b - across * a) * inputs.nearOne();
        return Bound::kPromised;
    }
    case 3:  // grays and the axes
        for (float *lab : {lab1, lab2})
            lab[1 + inputs.pick(2)] = inputs.signedZero();
        if (inputs.pick(2) == 0) lab1[1] = lab1[2] = inputs.signedZero();
        return Bound::kPromised;
    case 4:
        for (int i = 0; i < 3; ++i) {
            if (inputs.pick(3) == 0) lab1[i] = inputs.special();
            if (inputs.pick(3) == 0) lab2[i] = inputs.special();
        }
        return Bound::kPromised;
    default:
        return Bound::kPromised;
    }
}

void comparePairs(ColorKernels::Difference ColorKernels::*formula) {
    constexpr DifferenceWeights kWeights[] = {{}, {2, 1, 1}, {1, 0.5F, 1.5F}};
    Inputs inputs;
    Tally tally;
    Numbers lab1(3 * kBlock), lab2(3 * kBlock), plain(kBlock), found(kBlock), other(kBlock);
    std::vector<Bound> bounds(kBlock);
    for (int block = 0; block < kBlocks; ++block) {
        const DifferenceWeights &weights = kWeights[block % 3];
        for (std::size_t i = 0; i < kBlock; ++i)
            bounds[i] = fillPair(inputs, &lab1[3 * i], &lab2[3 * i]);
        (kPlainKernels.*formula)(lab1.data(), lab2.data(), kBlock, plain.data(), weights);
        (kv::detail::colorKernels().*formula)(lab1.data(), lab2.data(), kBlock, found.data(), weights);
        const bool hasMeanHue = formula == &ColorKernels::deltaECmc || formula == &ColorKernels::deltaE2000;
        for (std::size_t i = 0; i < kBlock; ++i)
            tally.compare(plain[i], found[i], kSingle, hasMeanHue ? bounds[i] : Bound::kPromised);
        if (block % 10 != 0) continue;
        for (const ColorKernels *kernels : kv::detail::usableColorKernels()) {
            (kernels->*formula)(lab1.data(), lab2.data(), kBlock, other.data(), weights);
            expectSameBits(found, other, kernels->name);
        }
    }
    EXPECT_EQ(tally.beyond, 0U) << "of " << kBlock * kBlocks << "; " << tally.worst << ": "
                                << tally.worstValues;
}

TEST(ColorKernels, Eab) { comparePairs(&ColorKernels::deltaEab); }
TEST(ColorKernels, E94) { comparePairs(&ColorKernels::deltaE94); }
TEST(ColorKernels, ECmc) { comparePairs(&ColorKernels::deltaECmc); }
TEST(ColorKernels, E2000) { comparePairs(&ColorKernels::deltaE2000); }

// At each block a new condition, a white or a model. In place for all kernels but the plain ones.
template <class Kernel, class Conditions, class Fill>
void compareColors(Kernel ColorKernels::*transform, const Conditions &conditions, Tolerance tolerance,
                   Fill fill) {
    Inputs inputs;
    Tally tally;
    Numbers in(3 * kBlock), plain(3 * kBlock), found(3 * kBlock), other(3 * kBlock);
    for (int block = 0; block < kBlocks; ++block) {
        const auto &condition = conditions[static_cast<std::size_t>(block) % std::size(conditions)];
        for (std::size_t i = 0; i < in.size(); i += 3)
            fill(inputs, &in[i]);
        (kPlainKernels.*transform)(condition, in.data(), plain.data(), kBlock);
        (kv::detail::colorKernels().*transform)(condition, in.data(), found.data(), kBlock);
        for (std::size_t i = 0; i < in.size(); ++i)
            tally.compare(plain[i], found[i], tolerance, Bound::kPromised);
        if (block % 10 != 0) continue;
        for (const ColorKernels *kernels : kv::detail::usableColorKernels()) {
            other = in;
            (kernels->*transform)(condition, other.data(), other.data(), kBlock);
            expectSameBits(found, other, kernels->name);
        }
    }
    EXPECT_EQ(tally.beyond, 0U) << "of " << 3 * kBlock * kBlocks << "; " << tally.worst << ": "
                                << tally.worstValues;
}

constexpr float kWhites[][3] = {
    {96.42F, 100, 82.49F}, {95.05F, 100, 108.88F}, {109.85F, 100, 35.58F}, {1e-3F, 0, 1e30F}};

std::vector<IccCamModel> viewingConditions() {
    std::vector<IccCamModel> models;
    for (const float La : {1.0F, 60.0F, 500.0F, 2000.0F})
        for (const auto &white : kWhites) {
            IccCamModel model;
            model.La = La;
            if (white[1] > 0) std::copy_n(white, 3, model.whitePoint);
            if (models.size() % 2 == 1) {
                model.C = 0.525F;
                model.Nc = model.F = 0.8F;
            }
            model.CalcCoefficients();
            models.push_back(model);
        }
    return models;
}

void fillXyz(Inputs &inputs, float *xyz) {
    const float scale = inputs.pick(4) == 0 ? inputs.uniform(0, 0.02F) : 1;
    for (int i = 0; i < 3; ++i)
        xyz[i] = kWhites[0][i] * inputs.uniform(-0.02F, 1.1F) * scale;
    switch (inputs.pick(8)) {
    case 0:  // grays
        for (int i = 0; i < 2; ++i)
            xyz[i] = xyz[2] * kWhites[0][i] / kWhites[0][2] * inputs.nearOne();
        break;
    case 1:
        for (int i = 0; i < 3; ++i)
            if (inputs.pick(3) == 0) xyz[i] = inputs.special();
        break;
    case 2:  // where the line of CIELAB ends
        xyz[1] = 0.88564517F * inputs.nearOne();
        break;
    default:
        break;
    }
}

// Of either space: their ranges are much the same.
void fillLabOrJab(Inputs &inputs, float *lab) {
    inputs.lab(lab);
    switch (inputs.pick(8)) {
    case 0:
        lab[inputs.pick(3)] = inputs.special();
        break;
    case 1:  // where the line of CIELAB ends
        lab[0] = 8 * inputs.nearOne();
        lab[1] *= 1e-6F;
        break;
    case 2:  // the diagonals, at which the sectors of the model's inverse meet, and the axes
        lab[1] = lab[2] * (static_cast<float>(inputs.pick(3)) - 1) * inputs.nearOne();
        break;
    case 3:
        lab[1] = inputs.signedZero();
        lab[2] *= static_cast<float>(inputs.pick(2));
        break;
    default:
        break;
    }
}

TEST(ColorKernels, XyzToLab) { compareColors(&ColorKernels::xyzToLab, kWhites, kDouble, fillXyz); }
TEST(ColorKernels, LabToXyz) { compareColors(&ColorKernels::labToXyz, kWhites, kDouble, fillLabOrJab); }
TEST(ColorKernels, XyzToJab) {
    compareColors(&ColorKernels::xyzToJab, viewingConditions(), kSingle, fillXyz);
}
TEST(ColorKernels, JabToXyz) {
    compareColors(&ColorKernels::jabToXyz, viewingConditions(), kSingle, fillLabOrJab);
}

}  // namespace
