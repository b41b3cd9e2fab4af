// Reports of patches: events against Expat alone with the same look-ups, and the report's own reader and
// writer.

#include <benchmark/benchmark.h>
#include <kvbase/evaluation/kv_color_report.h>
#include <kvbase/xml/expat_xml_parser.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#ifdef KVBASE_BENCH_PEERS
#    include <expat.h>
#endif

namespace {

constexpr const char *kLookedUp[] = {"name", "group", "stim", "dETol", "dCTol", "dHTol"};

void fill(KV_ColorReport &report, std::size_t patches) {
    report.hasAbs = true;
    for (std::size_t i = 0; i < patches; ++i) {
        KV_ColorPatch patch;
        patch.name = "patch " + std::to_string(i);
        patch.group = "group " + std::to_string(i % 19);
        for (std::size_t c = 0; c < 4; ++c)
            patch.stim[c] = static_cast<float>((i >> (4 * c)) % 16) * 6.25F;
        patch.check.dE.tolerances = patch.check.dH.tolerances = {2.5F, 3.75F, 5};
        report.compareAbs.patches.push_back(patch);
    }
}

std::string document(std::size_t patches) {
    KV_ColorReport report;
    fill(report, patches);
    std::ostringstream out;
    out << report;
    return out.str();
}

// About 20 MB.
const std::string &large() {
    static const std::string text = document(110000);
    return text;
}

class LookingUp : public XMLSchemaHandler {
public:
    void StartElement(const KV_String & /*name*/, const KalSAX::AttributeList &attributes) override {
        for (const char *name : kLookedUp)
            bytes += attributes.GetValue(name).Size();
    }
    void EndElement(const KV_String & /*name*/) override { ++ends; }
    void Characters(const KV_String &text) override { bytes += text.Size(); }

    std::size_t bytes = 0, ends = 0;
};

void BM_Events(benchmark::State &state) {
    std::string text = large();
    for (auto _ : state) {
        LookingUp handler;
        ExpatXMLParser parser;
        parser.SetDocumentHandler(handler);
        parser.SetErrorHandler(handler);
        if (!parser.Parse(text.data(), static_cast<std::uint32_t>(text.size()))) state.SkipWithError("parse");
        benchmark::DoNotOptimize(handler.bytes + handler.ends);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_Events)->Unit(benchmark::kMillisecond);

#ifdef KVBASE_BENCH_PEERS
void lookUp(void *user, const char * /*name*/, const char **attributes) {
    for (const char *name : kLookedUp)
        for (const char **at = attributes; *at != nullptr; at += 2)
            if (std::strcmp(*at, name) == 0) {
                *static_cast<std::size_t *>(user) += std::strlen(at[1]);
                break;
            }
}
void count(void *user, const char * /*name*/) { ++*static_cast<std::size_t *>(user); }
void add(void *user, const char * /*text*/, int length) {
    *static_cast<std::size_t *>(user) += static_cast<std::size_t>(length);
}

void BM_Expat(benchmark::State &state) {
    const std::string &text = large();
    for (auto _ : state) {
        std::size_t seen = 0;
        const XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &seen);
        XML_SetElementHandler(parser, lookUp, count);
        XML_SetCharacterDataHandler(parser, add);
        if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) == 0)
            state.SkipWithError("parse");
        XML_ParserFree(parser);
        benchmark::DoNotOptimize(seen);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_Expat)->Unit(benchmark::kMillisecond);
#endif

const std::string kFile = (std::filesystem::temp_directory_path() / "kvbase_bench_report.xml").string();

// To a file, flushed line by line.
void BM_WriteReport(benchmark::State &state) {
    KV_ColorReport report;
    fill(report, 100000);
    for (auto _ : state) {
        std::ofstream out(kFile, std::ios::binary);
        out << report;
        if (!out.flush()) state.SkipWithError("write");
    }
    std::filesystem::remove(kFile);
}
BENCHMARK(BM_WriteReport)->Unit(benchmark::kMillisecond);

void BM_ReadReport(benchmark::State &state) {
    std::ofstream(kFile, std::ios::binary) << document(100000);
    for (auto _ : state) {
        KV_ColorReport report;
        ExpatXMLParser parser;
        if (!report.ParseFile(&parser, KV_FileSpecFromNative(kFile.c_str())) ||
            report.compareAbs.patches.size() != 100000)
            state.SkipWithError("read");
    }
    std::filesystem::remove(kFile);
}
BENCHMARK(BM_ReadReport)->Unit(benchmark::kMillisecond);

}  // namespace
