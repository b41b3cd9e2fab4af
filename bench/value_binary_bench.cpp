// The binary form: a tree of settings, a time per entry, beside nlohmann-json's CBOR on the same tree; and an
// array of 10 million doubles, a time per element, beside the loop that moves such an array without a form.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/stream/kv_sstream.h"
#include "kvbase/univval/kv_uval_binary.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_leaf.h"
#include "value_tree.h"

namespace {

constexpr int kEntries = 20316;
constexpr std::int32_t kDoubles = 10000000;
constexpr std::size_t kArrayBytes = kDoubles * sizeof(double);
constexpr std::size_t kBlock = 512;

using Dict = std::unique_ptr<KV_UValDict>;

// The tree.

std::string write(KV_UValDict &dict) {
    KV_SStream stream;
    stream.Open("w", false);
    dict.AppendBinToStream(&stream);
    return {stream.GetMemPtr(), stream.Length()};
}

Dict read(const std::string &bytes) {
    KV_SStream stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    auto dict = std::make_unique<KV_UValDict>(16384U);
    dict->ReadBinFromStream(&stream);
    return dict;
}

void BM_ReadTree(benchmark::State &state) {
    const std::string bytes = write(*kvbench::makeValueTree());
    if (write(*read(bytes)) != bytes) std::abort();
    KV_SStream stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    for (auto _ : state) {
        KV_UValDict dict(16384U);
        stream.Seek(0, KV_Stream::SeekFromStart);
        dict.ReadBinFromStream(&stream);
        benchmark::DoNotOptimize(dict);
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(BM_ReadTree)->Unit(benchmark::kMillisecond);

// The trees that are written were read before, ours and theirs, as in a program: their parts lie in memory in
// the order in which they came.
void BM_WriteTree(benchmark::State &state) {
    const Dict tree = read(write(*kvbench::makeValueTree()));
    for (auto _ : state) {
        KV_SStream stream;
        stream.Open("w", false);
        tree->AppendBinToStream(&stream);
        benchmark::DoNotOptimize(stream);
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_WriteTree)->Unit(benchmark::kMillisecond);

#ifdef KVBASE_BENCH_PEERS
std::vector<std::uint8_t> sourceCbor() {
    return nlohmann::json::to_cbor(kvbench::toJson(*kvbench::makeValueTree()));
}

void BM_ReadCbor(benchmark::State &state) {
    const std::vector<std::uint8_t> bytes = sourceCbor();
    for (auto _ : state)
        benchmark::DoNotOptimize(nlohmann::json::from_cbor(bytes));
    state.SetItemsProcessed(state.iterations() * kEntries);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(BM_ReadCbor)->Unit(benchmark::kMillisecond);

void BM_WriteCbor(benchmark::State &state) {
    const nlohmann::json json = nlohmann::json::from_cbor(sourceCbor());
    for (auto _ : state)
        benchmark::DoNotOptimize(nlohmann::json::to_cbor(json));
    state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_WriteCbor)->Unit(benchmark::kMillisecond);
#endif

// The array.

class ArrayBench : public benchmark::Fixture {
public:
    void SetUp(const benchmark::State &) override {
        m_path = std::filesystem::temp_directory_path() / "kvbase_value_binary_bench";
        m_file = KV_FileSpecFromNative(KV_String(m_path.string().c_str()));
        m_dict = std::make_unique<KV_UValDict>(16384U);
        m_data = static_cast<KV_UValDouble *>(m_dict->DefineUVal("a", KV_UVAL_DOUBLE, kDoubles, nullptr))
                     ->GetValuePtr(0);
        for (std::int32_t i = 0; i < kDoubles; ++i)
            m_data[i] = i / 7.0;
    }
    void TearDown(const benchmark::State &state) override {
        std::filesystem::remove(m_path);
        m_dict.reset();
        static_cast<void>(state);
    }

protected:
    std::FILE *open(const char *mode) const {
        std::FILE *file = std::fopen(m_path.string().c_str(), mode);
        if (file == nullptr) std::abort();
        return file;
    }
    void check(const double *data) const {
        if (std::memcmp(data, m_data, kArrayBytes) != 0) std::abort();
    }
    static void count(benchmark::State &state) {
        state.SetItemsProcessed(state.iterations() * kDoubles);
        state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kArrayBytes));
    }

    std::filesystem::path m_path;
    KV_FileSpec m_file;
    Dict m_dict;
    double *m_data = nullptr;  // the dictionary's
};

BENCHMARK_DEFINE_F(ArrayBench, ToFile)(benchmark::State &state) {
    for (auto _ : state)
        m_dict->WriteBinFile(m_file);
    count(state);
}
BENCHMARK_REGISTER_F(ArrayBench, ToFile)->Unit(benchmark::kMillisecond);

BENCHMARK_DEFINE_F(ArrayBench, ToFileRaw)(benchmark::State &state) {
    for (auto _ : state) {
        std::FILE *file = open("wb");
        const char *bytes = reinterpret_cast<const char *>(m_data);
        for (std::size_t at = 0; at < kArrayBytes; at += kBlock)
            if (std::fwrite(bytes + at, 1, kBlock, file) != kBlock) std::abort();
        std::fclose(file);
    }
    count(state);
}
BENCHMARK_REGISTER_F(ArrayBench, ToFileRaw)->Unit(benchmark::kMillisecond);

BENCHMARK_DEFINE_F(ArrayBench, FromFile)(benchmark::State &state) {
    m_dict->WriteBinFile(m_file);
    bool checked = false;
    for (auto _ : state) {
        KV_UValDict dict(16384U);
        dict.ReadBinFile(m_file);
        benchmark::DoNotOptimize(dict);
        if (!checked) check(static_cast<KV_UValDouble *>(dict.GetUVal("a"))->GetValuePtr(0));
        checked = true;
    }
    count(state);
}
BENCHMARK_REGISTER_F(ArrayBench, FromFile)->Unit(benchmark::kMillisecond);

BENCHMARK_DEFINE_F(ArrayBench, FromFileRaw)(benchmark::State &state) {
    std::FILE *target = open("wb");
    if (std::fwrite(m_data, 1, kArrayBytes, target) != kArrayBytes) std::abort();
    std::fclose(target);
    bool checked = false;
    for (auto _ : state) {
        const std::unique_ptr<double[]> data(new double[kDoubles]);
        std::FILE *file = open("rb");
        char *bytes = reinterpret_cast<char *>(data.get());
        for (std::size_t at = 0; at < kArrayBytes; at += kBlock)
            if (std::fread(bytes + at, 1, kBlock, file) != kBlock) std::abort();
        std::fclose(file);
        benchmark::DoNotOptimize(data.get());
        if (!checked) check(data.get());
        checked = true;
    }
    count(state);
}
BENCHMARK_REGISTER_F(ArrayBench, FromFileRaw)->Unit(benchmark::kMillisecond);

BENCHMARK_DEFINE_F(ArrayBench, PutInBlocks)(benchmark::State &state) {
    unsigned char block[kBlock];
    for (auto _ : state) {
        KV_BinPackUValDict packer;
        packer.Specify(m_dict.get());
        for (int more = 1; more != 0;) {
            unsigned char *cursor = block;
            more = packer.Put(&cursor, block + kBlock);
            benchmark::DoNotOptimize(block);
            benchmark::ClobberMemory();
        }
    }
    count(state);
}
BENCHMARK_REGISTER_F(ArrayBench, PutInBlocks)->Unit(benchmark::kMillisecond);

BENCHMARK_DEFINE_F(ArrayBench, PutMemcpy)(benchmark::State &state) {
    unsigned char block[kBlock];
    const char *bytes = reinterpret_cast<const char *>(m_data);
    for (auto _ : state) {
        for (std::size_t at = 0; at < kArrayBytes; at += kBlock) {
            std::memcpy(block, bytes + at, kBlock);
            benchmark::DoNotOptimize(block);
            benchmark::ClobberMemory();
        }
    }
    count(state);
}
BENCHMARK_REGISTER_F(ArrayBench, PutMemcpy)->Unit(benchmark::kMillisecond);

BENCHMARK_DEFINE_F(ArrayBench, GetInBlocks)(benchmark::State &state) {
    std::vector<unsigned char> image(kArrayBytes + kBlock);
    KV_BinPackUValDict packer;
    packer.Specify(m_dict.get());
    unsigned char *imageEnd = image.data();
    if (packer.Put(&imageEnd, image.data() + image.size()) != 0) std::abort();
    bool checked = false;
    for (auto _ : state) {
        KV_UValDict dict(16384U);
        packer.Specify(&dict);
        unsigned char *cursor = image.data();
        while (packer.Get(&cursor, cursor + kBlock) != 0) {
        }
        benchmark::DoNotOptimize(dict);
        if (!checked) check(static_cast<KV_UValDouble *>(dict.GetUVal("a"))->GetValuePtr(0));
        checked = true;
    }
    count(state);
}
BENCHMARK_REGISTER_F(ArrayBench, GetInBlocks)->Unit(benchmark::kMillisecond);

BENCHMARK_DEFINE_F(ArrayBench, GetMemcpy)(benchmark::State &state) {
    const char *bytes = reinterpret_cast<const char *>(m_data);
    for (auto _ : state) {
        const std::unique_ptr<double[]> data(new double[kDoubles]);
        char *target = reinterpret_cast<char *>(data.get());
        for (std::size_t at = 0; at < kArrayBytes; at += kBlock) {
            std::memcpy(target + at, bytes + at, kBlock);
            benchmark::ClobberMemory();
        }
        benchmark::DoNotOptimize(data.get());
    }
    count(state);
}
BENCHMARK_REGISTER_F(ArrayBench, GetMemcpy)->Unit(benchmark::kMillisecond);

}  // namespace
