// Events of a document against Expat alone with the same look-ups.

#include <benchmark/benchmark.h>
#include <kvbase/xml/expat_xml_parser.h>
#include <kvbase/xml/xml_schema_handler.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#ifdef KVBASE_BENCH_PEERS
#    include <expat.h>
#endif

namespace {

constexpr const char *kLookedUp[] = {"name", "group", "stim", "dETol", "dCTol", "dHTol"};

// About 20 MB, in the manner of a colour report.
std::string document() {
    std::string text = "<colorreport standard = \"\" basedOn = \"\">\n";
    for (int i = 0; i < 110000; ++i)
        text += "<colorpatch name = \"patch " + std::to_string(i) + "\" group = \"group " +
                std::to_string(i % 19) +
                "\" stim = \"6.25 12.50 0.00 93.75 \" dETol = \"2.50 3.75 5.00 : 0.10\" dHTol = \"2.50 3.75 "
                "5.00 : "
                "0.10\" ref = \"50.00 12.50 -3.75\" meas = \"50.10 12.40 -3.70\" />\n";
    return text + "</colorreport>\n";
}

const std::string &large() {
    static const std::string text = document();
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

}  // namespace
