// The dot gain fit at eleven tints, beside the plain search that solves every candidate anew.

#include <benchmark/benchmark.h>
#include <kvbase/color/kv_dotgain.h>

#include "../tests/color/plain_dotgain.h"

namespace {

// The effective areas of a newspaper press, about 25 % gain in the middle.
struct Ramp {
    Ramp() {
        for (int i = 0; i <= 10; ++i) {
            const float a = static_cast<float>(i) / 10, effective = a + a * (1 - a) * (1.15F - 0.3F * a);
            tones[i] = a;
            xyz[3 * i] = 60 - effective * 38;
            xyz[3 * i + 1] = 63 - effective * 30;
            xyz[3 * i + 2] = 48 - effective * 12;
        }
    }
    float tones[11], xyz[33], limits[2] = {0, 10};
    double coefficients[4] = {};
    float scales[3] = {};
};

void BM_FitDotgain(benchmark::State &state) {
    Ramp ramp;
    for ([[maybe_unused]] auto _ : state) {
        FitDotgainFromXYZ(ramp.tones, ramp.xyz, 11, 0, ramp.coefficients, ramp.scales, ramp.limits);
        benchmark::DoNotOptimize(ramp.scales);
    }
}
BENCHMARK(BM_FitDotgain)->Unit(benchmark::kMillisecond);

void BM_FitDotgainPlain(benchmark::State &state) {
    Ramp ramp;
    for ([[maybe_unused]] auto _ : state) {
        plain::fitDotgain(ramp.tones, ramp.xyz, 11, 0, ramp.coefficients, ramp.scales, ramp.limits);
        benchmark::DoNotOptimize(ramp.scales);
    }
}
BENCHMARK(BM_FitDotgainPlain)->Unit(benchmark::kMillisecond);

}  // namespace
