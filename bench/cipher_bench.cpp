// The file cipher: blocks in bulk, and an enciphered text read in the pieces that the XML reader takes. With
// the peers, the same data in the same process through nettle, which keeps its key and works in place.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <kvbase/stream/kv_cipher.h>
#include <kvbase/stream/kv_fstream.h>
#include <kvbase/stream/kv_sstream.h>

#include "random_bytes.h"

#ifdef KVBASE_BENCH_PEERS
#    include <nettle/blowfish.h>
#endif

using kvbench::randomBytes;

namespace {

constexpr std::uint32_t kPiece = 512;
unsigned char kKey[] = "      123456";  // 12 characters
constexpr std::uint32_t kKeyBytes = sizeof kKey - 1;

std::string longText() {
    std::string text;
    for (int i = 0; text.size() < 256 * 1024; ++i)
        text += "<colorpatch id=\"" + std::to_string(i) + "\" lab=\"53.24 -12.10 7.95\"/>\n";
    text.resize(256 * 1024);
    return text;
}

void perBlock(benchmark::State &state, std::size_t bytes) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bytes / 8));
}

void BM_Encode(benchmark::State &state) {
    std::vector<unsigned char> bytes = randomBytes(static_cast<std::size_t>(state.range(0)));
    CBlowFish cipher;
    cipher.Initialize(kKey, kKeyBytes);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            cipher.Encode(bytes.data(), bytes.data(), static_cast<std::uint32_t>(bytes.size())));
    perBlock(state, bytes.size());
}

void BM_Decode(benchmark::State &state) {
    std::vector<unsigned char> bytes = randomBytes(static_cast<std::size_t>(state.range(0)));
    CBlowFish cipher;
    cipher.Initialize(kKey, kKeyBytes);
    for (auto _ : state) {
        cipher.Decode(bytes.data(), bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        benchmark::DoNotOptimize(bytes.data());
    }
    perBlock(state, bytes.size());
}

void BM_KeySchedule(benchmark::State &state) {
    CBlowFish cipher;
    for (auto _ : state)
        cipher.Initialize(kKey, kKeyBytes);
}

// Reads the whole stream in pieces, again and again.
void readPieces(benchmark::State &state, KV_Stream &stream) {
    const std::string text = longText();
    stream.Open("w", false);
    stream.WriteEncrypted(text.data(), static_cast<std::uint32_t>(text.size()));
    stream.Close();
    stream.Open("r", false);
    std::vector<char> buffer(kPiece + 1);
    for (auto _ : state) {
        stream.Seek(0, KV_Stream::SeekFromStart);
        while (stream.ReadEncrypted(buffer.data(), kPiece) == kPiece)
            benchmark::DoNotOptimize(buffer.data());
    }
    if (std::string(buffer.data(), kPiece - 8) != text.substr(text.size() - kPiece, kPiece - 8))
        state.SkipWithError("the text did not come back");
    perBlock(state, text.size());
}

void BM_ReadEncryptedMemory(benchmark::State &state) {
    KV_SStream stream;
    readPieces(state, stream);
}

void BM_ReadEncryptedFile(benchmark::State &state) {
    const std::string path = (std::filesystem::temp_directory_path() / "kvbase_cipher_bench").string();
    KV_FStream stream(KV_FileSpecFromNative(KV_String(path.c_str())));
    readPieces(state, stream);
    stream.Close();
    stream.Remove();
}

BENCHMARK(BM_Encode)->Arg(512)->Arg(64 * 1024);
BENCHMARK(BM_Decode)->Arg(512)->Arg(64 * 1024);
BENCHMARK(BM_KeySchedule);
BENCHMARK(BM_ReadEncryptedMemory);
BENCHMARK(BM_ReadEncryptedFile);

#ifdef KVBASE_BENCH_PEERS
void BM_NettleEncrypt(benchmark::State &state) {
    std::vector<unsigned char> bytes = randomBytes(static_cast<std::size_t>(state.range(0)));
    blowfish_ctx context;
    blowfish_set_key(&context, kKeyBytes, kKey);
    for (auto _ : state) {
        blowfish_encrypt(&context, bytes.size(), bytes.data(), bytes.data());
        benchmark::DoNotOptimize(bytes.data());
    }
    perBlock(state, bytes.size());
}

// At 512 bytes the measure of the pieces, too.
void BM_NettleDecrypt(benchmark::State &state) {
    std::vector<unsigned char> bytes = randomBytes(static_cast<std::size_t>(state.range(0)));
    blowfish_ctx context;
    blowfish_set_key(&context, kKeyBytes, kKey);
    for (auto _ : state) {
        blowfish_decrypt(&context, bytes.size(), bytes.data(), bytes.data());
        benchmark::DoNotOptimize(bytes.data());
    }
    perBlock(state, bytes.size());
}

void BM_NettleKeySchedule(benchmark::State &state) {
    blowfish_ctx context;
    for (auto _ : state) {
        blowfish_set_key(&context, kKeyBytes, kKey);
        benchmark::DoNotOptimize(context);
    }
}

BENCHMARK(BM_NettleEncrypt)->Arg(512)->Arg(64 * 1024);
BENCHMARK(BM_NettleDecrypt)->Arg(512)->Arg(64 * 1024);
BENCHMARK(BM_NettleKeySchedule);
#endif

}  // namespace
