// Adding measured patches to a comparison whose template has 20 groups with limits on every quantity.

#include <benchmark/benchmark.h>
#include <kvbase/evaluation/kv_color_comparison.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

struct Measurements {
    std::vector<std::string> names, groups;
    std::vector<float> stim, ref, meas;

    std::uint32_t count() const { return static_cast<std::uint32_t>(names.size()); }
};

// Different colours all, in groups of their own that the template has.
Measurements measurements(std::size_t count) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> ink(0, 100), lightness(10, 95), chroma(-60, 60);
    std::normal_distribution<float> error(0, 1.5F);
    Measurements made;
    for (std::size_t i = 0; i < count; ++i) {
        made.names.push_back("patch " + std::to_string(i));
        made.groups.push_back("group " + std::to_string(i % 19));
        for (int c = 0; c < 4; ++c)
            made.stim.push_back(ink(random));
        for (int c = 0; c < 3; ++c) {
            made.ref.push_back(c == 0 ? lightness(random) : chroma(random));
            made.meas.push_back(made.ref.back() + error(random));
        }
    }
    return made;
}

KV_ColorComparison withGroups() {
    KV_ColorComparison made;
    made.formula.formula = 3;
    for (int i = 0; i < 20; ++i) {
        KV_ColorStat stat;
        stat.name = i == 0 ? "CtrlStrip" : "group " + std::to_string(i - 1);
        for (KV_ColorCheck *check : {&stat.av, &stat.max, &stat.gam, &stat.p95})
            for (KV_ColorTol *tol : {&check->dE, &check->dC, &check->dH, &check->dL, &check->da, &check->db})
                tol->tolerances = {2.5F, 3.75F, 5};
        made.stats.push_back(stat);
    }
    return made;
}

template <class Add>
void overPatches(benchmark::State &state, Add add) {
    Measurements patches = measurements(static_cast<std::size_t>(state.range(0)));
    const KV_ColorComparison groups = withGroups();
    for (auto _ : state) {
        KV_ColorComparison comparison = groups;
        std::vector<float> differences;
        add(comparison, patches, differences);
        comparison.CalcStats(differences);
        if (comparison.patches.size() != patches.count() || !std::isnormal(differences.back()))
            state.SkipWithError("not every patch was judged");
    }
}

void BM_AddPatch(benchmark::State &state) {
    overPatches(state, [](KV_ColorComparison &to, Measurements &from, std::vector<float> &differences) {
        for (std::size_t i = 0; i < from.count(); ++i)
            to.AddPatch(from.names[i], from.groups[i], &from.stim[4 * i], &from.ref[3 * i], &from.meas[3 * i],
                        differences);
    });
}
BENCHMARK(BM_AddPatch)->Arg(3000)->Unit(benchmark::kMillisecond);

void BM_AddPatches(benchmark::State &state) {
    overPatches(state, [](KV_ColorComparison &to, Measurements &from, std::vector<float> &differences) {
        to.AddPatches(from.count(), from.names.data(), from.groups.data(), from.stim.data(), from.ref.data(),
                      from.meas.data(), differences);
    });
}
BENCHMARK(BM_AddPatches)->Arg(3000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
