// Any bytes as a document: elements that begin also end, a failure has one message, and a report that was
// read is written and read again the same.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "kvbase/evaluation/kv_color_report.h"
#include "kvbase/xml/expat_xml_parser.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

class Counting : public XMLSchemaHandler {
public:
    void StartElement(const KV_String &name, const KalSAX::AttributeList &attributes) override {
        ++open;
        bool flag = false;
        std::int32_t whole = 0;
        double number = 0;
        KalSAX::ElementAttributes::GetBoolValue(attributes, "name", flag);
        KalSAX::ElementAttributes::GetIntegerValue(attributes, "name", whole);
        KalSAX::ElementAttributes::GetDoubleValue(attributes, "name", number);
        require(!name.IsEmpty() && attributes.GetLength() >= 0);
    }
    void EndElement(const KV_String & /*name*/) override { require(open-- > 0); }
    void Characters(const KV_String &text) override { require(text.Size() > 0 && text.Size() <= 65535); }
    void FatalError(const KV_String & /*message*/) override { ++failures; }

    int open = 0, failures = 0;
};

std::string written(KV_ColorReport &report) {
    std::ostringstream out;
    out << report;
    return out.str();
}

bool read(KV_ColorReport &report, std::string text) {
    ExpatXMLParser parser;
    return report.ParseBuffer(&parser, text.data(), static_cast<std::uint32_t>(text.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string text(data, data + size);
    Counting events;
    ExpatXMLParser parser;
    parser.SetDocumentHandler(events);
    parser.SetErrorHandler(events);
    const bool isGood = parser.Parse(text.data(), static_cast<std::uint32_t>(text.size()));
    require(events.failures == (isGood ? 0 : 1) && (!isGood || events.open == 0));

    KV_ColorReport report;
    require(read(report, text) == isGood);
    if (!isGood) return 0;
    KV_ColorReport again, third;
    if (read(again, written(report)) && read(third, written(again))) {
        require(again.compareAbs.patches.size() == report.compareAbs.patches.size());
        require(written(third) == written(again));
    }
    return 0;
}
