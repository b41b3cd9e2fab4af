// Colour differences and the transforms of CIELAB and of the appearance model, over lists of varied colours.
// With the peers, the same colours in the same process through Little CMS, which takes one at a time, in
// double.

#include <benchmark/benchmark.h>
#include <kvbase/color/kv_color_difference.h>
#include <kvbase/color/kv_ct_cielab.h>
#include <kvbase/color/kv_ct_icc_cam.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#ifdef KVBASE_BENCH_PEERS
#    include <lcms2.h>
#endif

namespace {

constexpr std::int32_t kColors = 100000;
constexpr std::size_t kNumbers = 3 * std::size_t{kColors};

using Numbers = std::vector<float>;

// Lab spread over the gamut of prints: full colors have a middle lightness.
Numbers variedLab(unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> lightness(5, 97), saturation(0, 1.6F), hue(0, 6.2831855F);
    Numbers lab(kNumbers);
    for (std::size_t i = 0; i < kNumbers; i += 3) {
        lab[i] = lightness(random);
        const float c = saturation(random) * std::min(lab[i], 100 - lab[i]), h = hue(random);
        lab[i + 1] = c * std::cos(h);
        lab[i + 2] = c * std::sin(h);
    }
    return lab;
}

// Other samples of the same list: a few units off, as a measurement is off its reference.
Numbers measured(const Numbers &reference) {
    std::mt19937 random(5);
    std::normal_distribution<float> error(0, 2);
    Numbers lab = reference;
    for (float &x : lab)
        x += error(random);
    return lab;
}

const Numbers &lab1() {
    static const Numbers lab = variedLab(1);
    return lab;
}
const Numbers &lab2() {
    static const Numbers lab = measured(lab1());
    return lab;
}
const Numbers &xyz() {
    static const Numbers colors = [] {
        Numbers lab = lab1(), made(kNumbers);
        KV_CTCielab().Lab2XYZ(lab.data(), made.data(), kColors);
        return made;
    }();
    return colors;
}
const Numbers &jab() {
    static const Numbers colors = [] {
        Numbers in = xyz(), made(kNumbers);
        KV_CTIccCam().XYZ2Jab(in.data(), made.data(), kColors);
        return made;
    }();
    return colors;
}

void perColor(benchmark::State &state) { state.SetItemsProcessed(state.iterations() * kColors); }

template <class Formula>
void overPairs(benchmark::State &state, Formula formula) {
    Numbers first = lab1(), second = lab2(), out(kColors);
    for (auto _ : state) {
        formula(first.data(), second.data(), out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    perColor(state);
}

template <class Transform>
void overColors(benchmark::State &state, const Numbers &colors, Transform transform) {
    Numbers in = colors, out(kNumbers);
    for (auto _ : state) {
        transform(in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    perColor(state);
}

void BM_Eab(benchmark::State &state) {
    overPairs(state, [](float *a, float *b, float *out) { ColorDifferenceDeltaEab(a, b, kColors, out); });
}
void BM_E94(benchmark::State &state) {
    overPairs(state,
              [](float *a, float *b, float *out) { ColorDifferenceDeltaE94(a, b, kColors, out, 1, 1, 1); });
}
void BM_Ecmc(benchmark::State &state) {
    overPairs(state,
              [](float *a, float *b, float *out) { ColorDifferenceDeltaECMC(a, b, kColors, out, 2, 1); });
}
void BM_E2000(benchmark::State &state) {
    overPairs(state,
              [](float *a, float *b, float *out) { ColorDifferenceDeltaE2000(a, b, kColors, out, 1, 1, 1); });
}
void BM_OnePairE2000(benchmark::State &state) {
    Numbers first = lab1(), second = lab2();
    std::size_t i = 0;
    for (auto _ : state) {
        float out = 0;
        ColorDifferenceDeltaE2000(&first[3 * i], &second[3 * i], 1, &out, 1, 1, 1);
        benchmark::DoNotOptimize(out);
        i = i + 1 < kColors ? i + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}
void BM_XyzToLab(benchmark::State &state) {
    const KV_CTCielab cielab;
    overColors(state, xyz(), [&](float *in, float *out) { cielab.XYZ2Lab(in, out, kColors); });
}
void BM_LabToXyz(benchmark::State &state) {
    const KV_CTCielab cielab;
    overColors(state, lab1(), [&](float *in, float *out) { cielab.Lab2XYZ(in, out, kColors); });
}
void BM_XyzToJab(benchmark::State &state) {
    const KV_CTIccCam cam;
    overColors(state, xyz(), [&](float *in, float *out) { cam.XYZ2Jab(in, out, kColors); });
}
void BM_JabToXyz(benchmark::State &state) {
    const KV_CTIccCam cam;
    overColors(state, jab(), [&](float *in, float *out) { cam.Jab2XYZ(in, out, kColors); });
}
BENCHMARK(BM_Eab);
BENCHMARK(BM_E94);
BENCHMARK(BM_Ecmc);
BENCHMARK(BM_E2000);
BENCHMARK(BM_OnePairE2000);
BENCHMARK(BM_XyzToLab);
BENCHMARK(BM_LabToXyz);
BENCHMARK(BM_XyzToJab);
BENCHMARK(BM_JabToXyz);

#ifdef KVBASE_BENCH_PEERS
// The peer's colours are three doubles each.
template <class Color>
std::vector<Color> peerColors(const Numbers &numbers) {
    std::vector<Color> colors(numbers.size() / 3);
    for (std::size_t i = 0; i < colors.size(); ++i)
        colors[i] = {static_cast<double>(numbers[3 * i]), static_cast<double>(numbers[3 * i + 1]),
                     static_cast<double>(numbers[3 * i + 2])};
    return colors;
}

template <class Formula>
void overPeerPairs(benchmark::State &state, Formula formula) {
    const auto first = peerColors<cmsCIELab>(lab1()), second = peerColors<cmsCIELab>(lab2());
    std::vector<double> out(kColors);
    for (auto _ : state) {
        for (std::size_t i = 0; i < first.size(); ++i)
            out[i] = formula(&first[i], &second[i]);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    perColor(state);
}

template <class From, class To, class Transform>
void overPeerColors(benchmark::State &state, const std::vector<From> &in, Transform transform) {
    std::vector<To> out(in.size());
    for (auto _ : state) {
        for (std::size_t i = 0; i < in.size(); ++i)
            transform(&out[i], &in[i]);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    perColor(state);
}

void BM_LcmsEab(benchmark::State &state) { overPeerPairs(state, cmsDeltaE); }
void BM_LcmsE94(benchmark::State &state) { overPeerPairs(state, cmsCIE94DeltaE); }
void BM_LcmsEcmc(benchmark::State &state) {
    overPeerPairs(state, [](const cmsCIELab *a, const cmsCIELab *b) { return cmsCMCdeltaE(a, b, 2, 1); });
}
void BM_LcmsE2000(benchmark::State &state) {
    overPeerPairs(state,
                  [](const cmsCIELab *a, const cmsCIELab *b) { return cmsCIE2000DeltaE(a, b, 1, 1, 1); });
}

// The peer's own scale, white 1 there, Y of the white 100 in its appearance model.
constexpr cmsCIEXYZ kWhite = {0.9642, 1, 0.8249};

std::vector<cmsCIEXYZ> peerXyz(double scale) {
    std::vector<cmsCIEXYZ> colors = peerColors<cmsCIEXYZ>(xyz());
    for (cmsCIEXYZ &color : colors)
        color = {color.X * scale, color.Y * scale, color.Z * scale};
    return colors;
}

void BM_LcmsXyzToLab(benchmark::State &state) {
    overPeerColors<cmsCIEXYZ, cmsCIELab>(state, peerXyz(0.01), [](cmsCIELab *lab, const cmsCIEXYZ *color) {
        cmsXYZ2Lab(&kWhite, lab, color);
    });
}
void BM_LcmsLabToXyz(benchmark::State &state) {
    overPeerColors<cmsCIELab, cmsCIEXYZ>(
        state, peerColors<cmsCIELab>(lab1()),
        [](cmsCIEXYZ *color, const cmsCIELab *lab) { cmsLab2XYZ(&kWhite, color, lab); });
}

class PeerModel {
public:
    PeerModel() {
        cmsViewingConditions conditions = {{96.42, 100, 82.49}, 20, 500, AVG_SURROUND, D_CALCULATE};
        m_model = cmsCIECAM02Init(nullptr, &conditions);
    }
    PeerModel(const PeerModel &) = delete;
    PeerModel &operator=(const PeerModel &) = delete;
    ~PeerModel() { cmsCIECAM02Done(m_model); }
    operator cmsHANDLE() const { return m_model; }

private:
    cmsHANDLE m_model;
};

void BM_LcmsXyzToJch(benchmark::State &state) {
    const PeerModel model;
    overPeerColors<cmsCIEXYZ, cmsJCh>(state, peerXyz(1), [&](cmsJCh *jch, const cmsCIEXYZ *color) {
        cmsCIECAM02Forward(model, color, jch);
    });
}
void BM_LcmsJchToXyz(benchmark::State &state) {
    const PeerModel model;
    const std::vector<cmsCIEXYZ> colors = peerXyz(1);
    std::vector<cmsJCh> jch(colors.size());
    for (std::size_t i = 0; i < colors.size(); ++i)
        cmsCIECAM02Forward(model, &colors[i], &jch[i]);
    overPeerColors<cmsJCh, cmsCIEXYZ>(
        state, jch, [&](cmsCIEXYZ *color, const cmsJCh *from) { cmsCIECAM02Reverse(model, from, color); });
}
BENCHMARK(BM_LcmsEab);
BENCHMARK(BM_LcmsE94);
BENCHMARK(BM_LcmsEcmc);
BENCHMARK(BM_LcmsE2000);
BENCHMARK(BM_LcmsXyzToLab);
BENCHMARK(BM_LcmsLabToXyz);
BENCHMARK(BM_LcmsXyzToJch);
BENCHMARK(BM_LcmsJchToXyz);
#endif

}  // namespace
