// What the manager itself takes for an object of a loaded module, and for its start. The module is this
// program, and hands out one object that costs nothing.

#include <benchmark/benchmark.h>
#include <kvbase/com/commngr.h>
#include <kvbase/com/commod.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

extern "C" {
KV_MODULE_EXPORT void *KV_Init(KV_COMManager *manager, KV_DictPath) { return manager; }
KV_MODULE_EXPORT void *KV_CreateObject(void *context, KV_DictPath, const char *) { return context; }
KV_MODULE_EXPORT void KV_Exit(void *) {}
}

namespace {

// A registry of this module and of others, in a folder of its own.
class Installation {
public:
    explicit Installation(std::int64_t others) {
        std::filesystem::create_directories(m_folder);
#if !defined(_WIN32)
        setenv("APPDATA", m_folder.c_str(), 1);
#endif
        std::ofstream file(m_folder / "r.krg");
        file << "<< /Components << /Bench (bench_static_dll)\n";
        for (std::int64_t i = 0; i < others; ++i)
            file << "/Group" << i / 10 << "x << /Member" << i % 10 << " (module_" << i << ") >>\n";
        file << ">> >>\n";
    }
    Installation(const Installation &) = delete;
    Installation &operator=(const Installation &) = delete;
    ~Installation() { std::filesystem::remove_all(m_folder); }
    KV_FileSpec registry() const { return KV_FileSpecFromNative((m_folder / "r.krg").string().c_str()); }

private:
    std::filesystem::path m_folder = std::filesystem::temp_directory_path() / "kvbase_manager_bench";
};

void BM_CreateObject(benchmark::State &state) {
    const Installation installation(state.range(0));
    KV_COMManager manager(installation.registry());
    if (manager.CreateObject("Bench:Thing", "IThing") != &manager) state.SkipWithError("not this module");
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(manager.CreateObject("Bench:Thing", "IThing"));
}
BENCHMARK(BM_CreateObject)->Arg(0)->Arg(999);

void BM_StartAndEnd(benchmark::State &state) {
    const Installation installation(state.range(0) - 1);
    const KV_FileSpec registry = installation.registry();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(KV_COMManager(registry).TotalUseCount());
    state.counters["components"] = static_cast<double>(state.range(0));
}
BENCHMARK(BM_StartAndEnd)->Arg(1)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
