// The reader of reports; kv_color_report_writer.cpp has the writer.

#include "kvbase/evaluation/kv_color_report.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

#include "adt/evaluation/report_names.h"
#include "kvbase/runtime/kv_number_text.h"
#include "kvbase/text/unicode_utils.h"

namespace {

using kv::detail::kFormulaNames;
using kv::detail::kPatchTolerances;
using kv::detail::kReadStatTolerances;

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Calls take with the number of each word.
template <class Take>
void forEachNumber(const KV_String &text, Take take) {
    const char *at = text.Ptr();
    const char *const end = at + text.Size();
    for (;;) {
        at = std::find_if_not(at, end, isBlank);
        if (at == end) return;
        take(kv_strtod(at, nullptr));
        at = std::find_if(at, end, isBlank);
    }
}

/// Limits, and behind a ":" the step, which goes with them.
void parseTolerance(const KV_String &text, KV_ColorTol &tol) {
    const std::size_t before = tol.tolerances.size();
    forEachNumber(text, [&tol](double number) { tol.tolerances.push_back(static_cast<float>(number)); });
    const std::string_view bytes(text.Ptr(), text.Size());
    if (bytes.find(':') == std::string_view::npos) return;
    if (tol.tolerances.size() < before + 2) {  // what the ":" was read as, and the step
        tol.tolerances.resize(before);
        return;
    }
    tol.step = tol.tolerances.back();
    tol.tolerances.resize(tol.tolerances.size() - 2);
}

std::string textOf(const KV_String &text) { return {text.Ptr(), text.Size()}; }

void readWeight(const KalSAX::AttributeList &attributes, const char *name, float &weight) {
    const KV_String text = attributes.GetValue(name);
    if (text.Size() != 0) weight = static_cast<float>(kv_strtod(text.Ptr(), nullptr));
}

}  // namespace

KV_ColorReport::~KV_ColorReport() = default;

// The base has nothing to copy.
// NOLINTNEXTLINE(readability-redundant-member-init): GCC asks for it
KV_ColorReport::KV_ColorReport(const KV_ColorReport &other) : XMLSchemaHandler() { *this = other; }

KV_ColorReport &KV_ColorReport::operator=(const KV_ColorReport &other) {
    if (this == &other) return *this;
    Clear();
    if (other.hasAbs) compareAbs = other.compareAbs;
    if (other.hasRel) compareRel = other.compareRel;
    hasAbs = other.hasAbs;
    hasRel = other.hasRel;
    reportType = other.reportType;
    standard = other.standard;
    basedOn = other.basedOn;
    metaData = other.metaData;
    return *this;
}

void KV_ColorReport::Clear() {
    hasAbs = hasRel = false;
    compareAbs.Clear();
    compareRel.Clear();
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface
bool KV_ColorReport::ParseFile(KalSAX::Parser *parser, KV_FileSpec file) {
    Clear();
    if (parser == nullptr) return false;
    parser->SetDocumentHandler(*this);
    parser->SetErrorHandler(*this);
    return parser->Parse(file, false);
}

bool KV_ColorReport::ParseBuffer(KalSAX::Parser *parser, char *buffer, std::uint32_t length) {
    if (parser == nullptr) return false;
    parser->SetDocumentHandler(*this);
    parser->SetErrorHandler(*this);
    return parser->Parse(buffer, length);
}

void KV_ColorReport::StartElement(const KV_String &name, const KalSAX::AttributeList &attributes) {
    if (name == "colorpatch")
        startPatch(attributes);
    else if (name == "colorstat")
        startStat(attributes);
    else if (name == "colorcomparison")
        startComparison(attributes);
    else if (name == "blackpoint" || name == "whitepoint")
        startPoint(attributes);
    else if (name == "colorreport")
        startReport(attributes);
}

void KV_ColorReport::EndElement(const KV_String &name) {
    if (name == "colorpatch")
        endPatch();
    else if (name == "colorstat")
        endStat();
    else if (name == "colorcomparison")
        endComparison();
    else if (name == "blackpoint" || name == "whitepoint") {
        (name == "blackpoint" ? comparison.blackpoint : comparison.whitepoint) = point;
        point.Clear();
    }
}

void KV_ColorReport::Characters(const KV_String & /*text*/) {}

// ---- elements --------------------------------------------------------------------------------------------

void KV_ColorReport::startReport(const KalSAX::AttributeList &attributes) {
    const auto wide = [](const KV_String &text) {
        return UnicodeUtils::CreateWideStringFromStdString(textOf(text));
    };
    Clear();
    patch = {};  // what a document that broke off has left
    stat = {};
    point.Clear();
    comparison.Clear();
    standard = wide(attributes.GetValue("standard"));
    const KV_String base = attributes.GetValue("basedOn");
    basedOn = base.Size() != 0 ? wide(base) : standard;
}

void KV_ColorReport::startComparison(const KalSAX::AttributeList &attributes) {
    const KV_String intent = attributes.GetValue("intent");
    if (intent == "side-by-side") comparison.intent = 3;
    if (intent == "media-relative") comparison.intent = 1;
    const int formula =
        KalSAX::ElementAttributes::GetValueChoice(attributes, "colordifference", kFormulaNames);
    comparison.formula.formula = std::max(formula, 0);
    readWeight(attributes, "kL", comparison.formula.kL);
    readWeight(attributes, "kC", comparison.formula.kC);
    readWeight(attributes, "kH", comparison.formula.kH);
    comparison.stispace = StringToColorSpace(attributes.GetValue("stispace").Ptr());
}

void KV_ColorReport::startPatch(const KalSAX::AttributeList &attributes) {
    patch.parsed = true;
    patch.name = textOf(attributes.GetValue("name"));
    patch.group = textOf(attributes.GetValue("group"));
    std::size_t channel = 0;
    forEachNumber(attributes.GetValue("stim"), [&](double number) {
        if (channel < std::size(patch.stim)) patch.stim[channel++] = static_cast<float>(number);
    });
    for (const auto &[name, tol] : kPatchTolerances)
        parseTolerance(attributes.GetValue(name), patch.check.*tol);
}

void KV_ColorReport::startStat(const KalSAX::AttributeList &attributes) {
    stat.name = textOf(attributes.GetValue("name"));
    for (const auto &[name, check, tol] : kReadStatTolerances)
        parseTolerance(attributes.GetValue(name), stat.*check.*tol);
}

void KV_ColorReport::startPoint(const KalSAX::AttributeList &attributes) {
    parseTolerance(attributes.GetValue("dETol"), point.dE);
}

// The frame of the comparison stays for a following one; the patches are many, and move.
void KV_ColorReport::endComparison() {
    const bool isRelative = comparison.intent == 1;
    KV_ColorComparison &target = isRelative ? compareRel : compareAbs;
    std::vector<KV_ColorPatch> patches = std::exchange(comparison.patches, {});
    target = comparison;
    target.patches = std::move(patches);
    (isRelative ? hasRel : hasAbs) = true;
    comparison.Clear();
}

// Moved, since it is cleared all the same; its lists are empty then.
void KV_ColorReport::endPatch() { comparison.patches.push_back(std::exchange(patch, {})); }

void KV_ColorReport::endStat() { comparison.stats.push_back(std::exchange(stat, {})); }
