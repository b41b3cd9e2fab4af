// Building standard lights: what a program that switches the viewing light waits for. One object takes one
// light after the other, as there.

#include <benchmark/benchmark.h>
#include <kvbase/color/kv_illuminant.h>

namespace {

void BM_SetStandardIlluminant(benchmark::State &state) {
    const auto type = static_cast<KV_IlluminantType>(state.range(0));
    KV_Illuminant light;
    for ([[maybe_unused]] auto _ : state) {
        light.SetStandardIlluminant(type, KV_Observer2Deg);
        benchmark::DoNotOptimize(light.GetXYZ());
    }
    state.SetLabel(IlluminantTypeToString(type));
}
BENCHMARK(BM_SetStandardIlluminant)
    ->Arg(KV_IT_A)
    ->Arg(KV_IT_C)
    ->Arg(KV_IT_D50)
    ->Arg(KV_IT_E)
    ->Arg(KV_IT_F1)
    ->Arg(KV_IT_D50_Local);

// Daylight whose white point is integrated.
void BM_SetIlluminantD(benchmark::State &state) {
    KV_Illuminant light;
    float temperature = 4000;
    for ([[maybe_unused]] auto _ : state) {
        light.SetIlluminantD(temperature, KV_Observer10Deg);
        benchmark::DoNotOptimize(light.GetXYZ());
        temperature = temperature < 20000 ? temperature + 7 : 4000;
    }
}
BENCHMARK(BM_SetIlluminantD);

}  // namespace
