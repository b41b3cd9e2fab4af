// The digest of MD5. With the peers, the same data in the same process through OpenSSL.

#include <benchmark/benchmark.h>
#include <kvbase/runtime/kv_checksum.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "random_bytes.h"

#ifdef KVBASE_BENCH_PEERS
#    include <openssl/evp.h>
#endif

using kvbench::randomBytes;

namespace {

constexpr std::size_t kDigest = 16;

// One item is a block of 64 bytes.
void perBlock(benchmark::State &state) {
    state.SetItemsProcessed(state.iterations() * (state.range(0) / 64));
}

void BM_Md5(benchmark::State &state) {
    std::vector<unsigned char> bytes = randomBytes(static_cast<std::size_t>(state.range(0)));
    unsigned char digest[kDigest];
    for (auto _ : state) {
        MD5String(bytes.data(), static_cast<unsigned int>(bytes.size()), digest);
        benchmark::DoNotOptimize(digest);
    }
    perBlock(state);
}
BENCHMARK(BM_Md5)->Arg(64)->Arg(4096)->Arg(1 << 20);

#ifdef KVBASE_BENCH_PEERS
void BM_OpensslMd5(benchmark::State &state) {
    std::vector<unsigned char> bytes = randomBytes(static_cast<std::size_t>(state.range(0)));
    unsigned char digest[kDigest], ours[kDigest];
    EVP_MD *const md5 = EVP_MD_fetch(nullptr, "MD5", nullptr);  // once: a search costs more than a block
    for (auto _ : state) {
        EVP_Digest(bytes.data(), bytes.size(), digest, nullptr, md5, nullptr);
        benchmark::DoNotOptimize(digest);
    }
    EVP_MD_free(md5);
    MD5String(bytes.data(), static_cast<unsigned int>(bytes.size()), ours);
    if (std::memcmp(ours, digest, kDigest) != 0) state.SkipWithError("the digests differ");
    perBlock(state);
}
BENCHMARK(BM_OpensslMd5)->Arg(64)->Arg(4096)->Arg(1 << 20);
#endif

}  // namespace
