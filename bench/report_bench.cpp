// Colour reports written to files and read from them.

#include <benchmark/benchmark.h>
#include <kvbase/evaluation/kv_color_report.h>
#include <kvbase/xml/expat_xml_parser.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

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
    {
        KV_ColorReport written;
        fill(written, 100000);
        std::ofstream out(kFile, std::ios::binary);
        out << written;
    }
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
