// Reading and writing a tree of settings in text form, a time per entry, beside nlohmann-json on the same
// tree.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>

#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_text.h"
#include "value_tree.h"

namespace {

constexpr int kEntries = 20316;

// Streams over a text that stands somewhere else, so that no copy of it is measured.
class TextSource : public std::streambuf {
public:
    explicit TextSource(std::string &text) { setg(text.data(), text.data(), text.data() + text.size()); }
};

class TextTarget : public std::streambuf {
public:
    explicit TextTarget(std::string &text) { setp(text.data(), text.data() + text.size()); }
};

std::unique_ptr<KV_UVal> read(std::string &text) {
    TextSource source(text);
    std::istream stream(&source);
    KV_UVal *value = nullptr;
    KV_ReadUValTxt(stream, value);
    return std::unique_ptr<KV_UVal>(value);
}

std::string write(KV_UVal &value) {
    std::ostringstream out;
    KV_WriteUValTxt(out, &value, 0);
    return std::move(out).str();
}

std::string sourceText() { return write(*kvbench::makeValueTree()); }

void BM_ReadText(benchmark::State &state) {
    std::string text = sourceText();
    if (write(*read(text)) != text) std::abort();
    for (auto _ : state)
        benchmark::DoNotOptimize(read(text));
    state.SetItemsProcessed(state.iterations() * kEntries);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_ReadText)->Unit(benchmark::kMillisecond);

// The trees that are written were read before, ours and theirs, as in a program: their parts lie in memory in
// the order in which they came.
void BM_WriteText(benchmark::State &state) {
    std::string text = sourceText();
    const auto tree = read(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(write(*tree));
    state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_WriteText)->Unit(benchmark::kMillisecond);

// The same without the growth of the stream's memory.
void BM_WriteTextInPlace(benchmark::State &state) {
    std::string text = sourceText();
    const auto tree = read(text);
    for (auto _ : state) {
        TextTarget target(text);
        std::ostream stream(&target);
        KV_WriteUValTxt(stream, tree.get(), 0);
        if (!stream) std::abort();
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_WriteTextInPlace)->Unit(benchmark::kMillisecond);

#ifdef KVBASE_BENCH_PEERS
std::string sourceJson() { return kvbench::toJson(*kvbench::makeValueTree()).dump(); }

void BM_ReadJson(benchmark::State &state) {
    const std::string text = sourceJson();
    for (auto _ : state)
        benchmark::DoNotOptimize(nlohmann::json::parse(text));
    state.SetItemsProcessed(state.iterations() * kEntries);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_ReadJson)->Unit(benchmark::kMillisecond);

void BM_WriteJson(benchmark::State &state) {
    const nlohmann::json json = nlohmann::json::parse(sourceJson());
    for (auto _ : state)
        benchmark::DoNotOptimize(json.dump());
    state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_WriteJson)->Unit(benchmark::kMillisecond);

void BM_WriteJsonInPlace(benchmark::State &state) {
    std::string text = sourceJson();
    const nlohmann::json json = nlohmann::json::parse(text);
    for (auto _ : state) {
        TextTarget target(text);
        std::ostream stream(&target);
        stream << json;
        if (!stream) std::abort();
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_WriteJsonInPlace)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
