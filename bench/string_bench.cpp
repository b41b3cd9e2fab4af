// What is done with strings all day, beside std::string: copies, appending, comparing. Lengths are those of
// keys, names and paths; the texts differ, so that no branch is learnt by heart.

#include <benchmark/benchmark.h>
#include <kvbase/text/kv_string.h>

#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kTexts = 64;

// Texts of that length that agree in all but their last quarter, some of them altogether.
template <class String>
std::vector<String> texts(std::int64_t length) {
    std::mt19937 random(1);
    std::vector<String> all;
    for (std::size_t i = 0; i < kTexts; ++i) {
        std::string text(static_cast<std::size_t>(length), 'k');
        for (std::size_t at = text.size() - text.size() / 4; at < text.size(); ++at) {
            text[at] = static_cast<char>('a' + random() % 2);
        }
        all.emplace_back(text.c_str());
    }
    return all;
}

template <class String>
void BM_Copy(benchmark::State &state) {
    const std::vector<String> all = texts<String>(state.range(0));
    std::size_t i = 0;
    for (auto _ : state) {
        String copy(all[i++ % kTexts]);
        benchmark::DoNotOptimize(copy);
    }
}

template <class String>
void BM_Assign(benchmark::State &state) {
    const std::vector<String> all = texts<String>(state.range(0));
    String target;
    std::size_t i = 0;
    for (auto _ : state) {
        target = all[i++ % kTexts];
        benchmark::DoNotOptimize(target);
    }
}

// Texts of 1 to 32 pieces, from nothing. Of one number of pieces the result would tell of the steps of the C
// library's allocator rather than of the strings.
template <class String>
void BM_Append(benchmark::State &state) {
    const std::vector<String> all = texts<String>(state.range(0));
    std::size_t pieces = 0;
    std::int64_t appended = 0;
    for (auto _ : state) {
        pieces = pieces % 32 + 1;
        String target;
        for (std::size_t i = 0; i < pieces; ++i) {
            target += all[i];
        }
        benchmark::DoNotOptimize(target);
        appended += static_cast<std::int64_t>(pieces);
    }
    state.SetItemsProcessed(appended);
}

template <class String>
void BM_AppendChar(benchmark::State &state) {
    for (auto _ : state) {
        String target;
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            target += 'x';
        }
        benchmark::DoNotOptimize(target);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class String>
void BM_Equal(benchmark::State &state) {
    const std::vector<String> all = texts<String>(state.range(0));
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(all[i % kTexts] == all[(7 * i + 1) % kTexts]);
        ++i;
    }
}

template <class String>
void BM_Less(benchmark::State &state) {
    const std::vector<String> all = texts<String>(state.range(0));
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(all[i % kTexts] < all[(7 * i + 1) % kTexts]);
        ++i;
    }
}

#define KV_BESIDE_STD(function)                                         \
    BENCHMARK_TEMPLATE(function, KV_String)->Arg(16)->Arg(32)->Arg(64); \
    BENCHMARK_TEMPLATE(function, std::string)->Arg(16)->Arg(32)->Arg(64)

KV_BESIDE_STD(BM_Copy);
KV_BESIDE_STD(BM_Assign);
KV_BESIDE_STD(BM_Append);
KV_BESIDE_STD(BM_AppendChar);
KV_BESIDE_STD(BM_Equal);
KV_BESIDE_STD(BM_Less);

}  // namespace
