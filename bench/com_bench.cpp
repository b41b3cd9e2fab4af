// The cache of links: what a caller pays who holds the link already, and the search through the table beside
// a plain loop over 16-byte keys.

#include <benchmark/benchmark.h>
#include <kvbase/com/kv_cacher.h>

#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <vector>

namespace {

class Link final : public KV_ILinkCore {
public:
    void AddRef() override { ++m_references; }
    void Release() override {
        if (--m_references == 0) delete this;
    }
    void CopyFrom(KV_ILinkCore *source, int, std::int32_t *) override { m_id = source->GetId(); }
    std::uint32_t GetId() override { return m_id; }
    void SetId(std::uint32_t id) override { m_id = id; }
    std::uint32_t GetSize() override { return 1; }

private:
    ~Link() override = default;
    std::atomic<int> m_references{1};
    std::atomic<std::uint32_t> m_id{0};
};

using Key = std::array<unsigned char, 16>;

// Keys as digests are: without an order.
std::vector<Key> randomKeys(std::size_t count) {
    std::vector<Key> keys(count);
    std::uint32_t state = 1;
    for (Key &key : keys)
        for (unsigned char &byte : key)
            byte = static_cast<unsigned char>((state = state * 1664525 + 1013904223) >> 24);
    return keys;
}

// A table with as many links; the caller's have the ids of those in the table.
class FullCache {
public:
    explicit FullCache(std::size_t count) {
        cacher.SetCachingMethod(KV_CACHING_MEMORY);
        for (Key &key : randomKeys(count)) {
            KV_CheckSum &sum = sums.emplace_back(key.data(), 16U);
            links.push_back(new Link);
            cacher.SetLinkCore(&sum, links.back(), false, 0, KV_CACHING_MEMORY);
        }
    }
    FullCache(const FullCache &) = delete;
    FullCache &operator=(const FullCache &) = delete;
    ~FullCache() {
        for (KV_ILinkCore *link : links)
            link->Release();
    }

    KV_Cacher cacher{nullptr};
    std::vector<KV_CheckSum> sums;
    std::vector<KV_ILinkCore *> links;
};

// GetLinkCore and UnRegister, for one link after the other. With several threads each has links of its own
// turn.
void BM_HeldLink(benchmark::State &state) {
    static std::unique_ptr<FullCache> cache;
    if (state.thread_index() == 0)
        cache = std::make_unique<FullCache>(static_cast<std::size_t>(state.range(0)));
    auto i = static_cast<std::size_t>(state.thread_index()) * 37;
    for ([[maybe_unused]] auto _ : state) {
        i = (i + 1) % cache->sums.size();
        cache->cacher.GetLinkCore(&cache->sums[i], state.thread_index(), cache->links[i], false, 0);
        cache->cacher.UnRegister(&cache->sums[i], state.thread_index(), false);
    }
    state.SetItemsProcessed(state.iterations());
    if (state.thread_index() == 0) cache.reset();
}
BENCHMARK(BM_HeldLink)->Arg(16)->Arg(64)->Arg(256)->Arg(1000)->Arg(1024);
BENCHMARK(BM_HeldLink)
    ->Name("BM_HeldLinkThreads")
    ->Arg(1000)
    ->Threads(1)
    ->Threads(2)
    ->Threads(4)
    ->Threads(8)
    ->UseRealTime();

// The whole table is searched: for links that it hasn't.
constexpr std::size_t kTable = 1024;

void BM_Search(benchmark::State &state) {
    FullCache cache(kTable);
    std::vector<KV_CheckSum> absent;
    for (Key &key : randomKeys(2 * kTable))
        absent.emplace_back(key.data(), 16U);
    std::size_t i = 0;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(cache.cacher.InMemCache(&absent[kTable + i++ % kTable]));
}
BENCHMARK(BM_Search);

void BM_PlainSearch(benchmark::State &state) {
    const std::vector<Key> keys = randomKeys(2 * kTable);
    std::size_t i = 0;
    for ([[maybe_unused]] auto _ : state) {
        const Key wanted = keys[kTable + i++ % kTable];
        std::size_t at = 0;
        while (at < kTable && std::memcmp(keys[at].data(), wanted.data(), 16) != 0)
            ++at;
        benchmark::DoNotOptimize(at);
    }
}
BENCHMARK(BM_PlainSearch);

}  // namespace
