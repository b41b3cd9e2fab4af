// The cost of a trace line that is off and of one that goes to a file, and of a lock that nobody else wants.
// A second thread is alive throughout: without one, the C library takes short cuts that no real program gets.

#include <benchmark/benchmark.h>
#include <kvbase/runtime/kv_lock.h>
#include <kvbase/runtime/kv_tracer.h>
#include <kvbase/text/kv_string.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <ostream>
#include <thread>

namespace {

// A thread that sleeps until its end.
class SecondThread {
public:
    SecondThread() : m_thread([this] { sleep(); }) {}
    SecondThread(const SecondThread &) = delete;
    SecondThread &operator=(const SecondThread &) = delete;
    ~SecondThread() {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_end = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }

private:
    void sleep() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wake.wait(lock, [this] { return m_end; });
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_end = false;
    std::thread m_thread;
};

void BM_TraceLineOff(benchmark::State &state) {
    const SecondThread second;
    KV_Tracer::SetTracing("KvBench", state.range(0) == 0 ? 0 : 0x001);
    static KV_Tracer *const tracer = KV_Tracer::FindOrCreate("KvBench");
    int value = 0;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(value);
        if (tracer != nullptr && tracer->IsOn(0x010)) {
            const KV_Synch lock(KV_Tracer::GetMutex());
            *tracer->Stream() << "module " << tracer->Name() << " : value " << value << std::endl;
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_TraceLineOff)->ArgName("errorsOn")->Arg(0)->Arg(1);

#if !defined(_WIN32)
// In a folder of its own, which only an environment variable can set. Each line is flushed.
void BM_TraceLineToFile(benchmark::State &state) {
    const SecondThread second;
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "kvbase_trace_bench";
    setenv("APPDATA", folder.c_str(), 1);
    if (!KV_Tracer::StartTracing(true, KV_String("trace.txt"))) state.SkipWithError("no trace file");
    KV_Tracer::SetTracing("KvBench", 0x010);
    static KV_Tracer *const tracer = KV_Tracer::FindOrCreate("KvBench");
    int value = 0;
    for ([[maybe_unused]] auto _ : state) {
        const KV_Synch lock(KV_Tracer::GetMutex());
        *tracer->Stream() << "module " << tracer->Name() << " : value " << ++value << std::endl;
    }
    KV_Tracer::SetTracing("KvBench", 0);
    KV_Tracer::StopTracing();
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_TraceLineToFile);
#endif

void BM_EmptyLoop(benchmark::State &state) {
    int value = 0;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(value);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_EmptyLoop);

template <class Mutex, class Synch>
void BM_Lock(benchmark::State &state) {
    const SecondThread second;
    Mutex mutex;
    for ([[maybe_unused]] auto _ : state) {
        const Synch lock(&mutex);
        benchmark::ClobberMemory();
    }
}
// The peer in the same form: a scope lock by pointer.
class StdLock {
public:
    explicit StdLock(std::recursive_mutex *mutex) : m_lock(*mutex) {}

private:
    std::lock_guard<std::recursive_mutex> m_lock;
};
BENCHMARK(BM_Lock<KV_Mutex, KV_Synch>)->Name("BM_Lock/KV_Synch");
BENCHMARK(BM_Lock<KV_MutexCacher, KV_SynchCacher>)->Name("BM_Lock/KV_SynchCacher");
BENCHMARK(BM_Lock<std::recursive_mutex, StdLock>)->Name("BM_Lock/std::recursive_mutex");

}  // namespace
