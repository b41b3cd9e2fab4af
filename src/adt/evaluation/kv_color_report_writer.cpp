#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iomanip>
#include <ostream>
#include <string>

#include "adt/evaluation/report_names.h"
#include "kvbase/evaluation/kv_color_report.h"
#include "kvbase/text/unicode_utils.h"

namespace {

using namespace kv::detail;

/// One line, which is put together before it goes to the stream.
class Line {
public:
    explicit Line(const char *beginning) : m_text(beginning) {}

    Line &text(std::string_view text) {
        m_text += text;
        return *this;
    }
    /// Two digits behind the point.
    Line &number(float value) {
        char digits[64];
        const char *const end =
            std::to_chars(digits, std::end(digits), value, std::chars_format::fixed, 2).ptr;
        return text({digits, static_cast<std::size_t>(end - digits)});
    }
    Line &attribute(const char *name, std::string_view value) {
        return text(name).text(" = \"").text(value).text("\"");
    }
    Line &attribute(const char *name, float value) {
        return text(name).text(" = \"").number(value).text("\"");
    }
    /// The limits and their step, and a blank; nothing when there are none.
    Line &tolerance(const char *name, const KV_ColorTol &tol) {
        if (tol.tolerances.empty()) return *this;
        text(name).text(" = \"");
        for (std::size_t i = 0; i < tol.tolerances.size(); ++i)
            text(i == 0 ? "" : " ").number(tol.tolerances[i]);
        return text(" : ").number(tol.step).text("\" ");
    }
    /// L*, a*, b*, and a blank.
    Line &color(const char *name, const float *lab) {
        return text(name).text(" = \"").number(lab[0]).text(" ").number(lab[1]).text(" ").number(lab[2]).text(
            "\" ");
    }
    void end(std::ostream &stream) const { stream << m_text << std::endl; }

private:
    std::string m_text;
};

void writeFrame(std::ostream &stream, const KV_ColorComparison &comparison) {
    const KV_ColorDifferenceFormula &formula = comparison.formula;
    const int number = formula.formula >= 0 && formula.formula <= 3 ? formula.formula : 0;
    Line line("<colorcomparison ");
    line.attribute("stispace", ColorSpaceToString(comparison.stispace)).text(" ");
    line.attribute("colordifference", kFormulaNames[number]);
    if (number != 0) line.text(" ").attribute("kL", formula.kL).text(" ").attribute("kC", formula.kC);
    if (number == 1 || number == 3) line.text(" ").attribute("kH", formula.kH);
    line.text(" ")
        .attribute("intent", comparison.intent == 1 ? "media-relative" : "side-by-side")
        .text(" >")
        .end(stream);
}

void writeStat(std::ostream &stream, const KV_ColorStat &stat) {
    Line line("<colorstat ");
    line.attribute("name", stat.name).text(" ");
    for (const auto &[name, check, tol] : kWrittenStatTolerances)
        line.tolerance(name, stat.*check.*tol);
    line.text("/>").end(stream);
}

void writePatch(std::ostream &stream, const KV_ColorPatch &patch, std::size_t channels) {
    Line line("<colorpatch ");
    line.attribute("name", patch.name).text(" ").attribute("group", patch.group).text(" stim = \"");
    for (std::size_t i = 0; i < channels; ++i)
        line.number(patch.stim[i]).text(" ");
    line.text("\" ");
    for (const auto &[name, tol] : kPatchTolerances)
        line.tolerance(name, patch.check.*tol);
    line.color("ref", patch.ref).color("meas", patch.meas).text("/>").end(stream);
}

void writePoint(std::ostream &stream, const char *beginning, const KV_ColorCheck &point) {
    if (point.dE.tolerances.empty()) return;
    Line(beginning).tolerance("dETol", point.dE).text("/>").end(stream);
}

void writeComparison(std::ostream &stream, const KV_ColorComparison &comparison) {
    stream << std::fixed << std::setprecision(2);
    writeFrame(stream, comparison);
    for (const KV_ColorStat &stat : comparison.stats)
        writeStat(stream, stat);
    const std::int32_t dimension = ColorSpaceDimension(comparison.stispace, 0, 0, 1);
    const auto channels = static_cast<std::size_t>(std::clamp(dimension, 0, KV_ColorPatch::kChannels));
    for (const KV_ColorPatch &patch : comparison.patches)
        writePatch(stream, patch, channels);
    writePoint(stream, "<blackpoint ", comparison.blackpoint);
    writePoint(stream, "<whitepoint ", comparison.whitepoint);
    Line("</colorcomparison>").end(stream);
}

}  // namespace

std::ostream &operator<<(std::ostream &stream, KV_ColorReport &report) {
    Line("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>").end(stream);
    Line("<colorreport ")
        .attribute("standard", UnicodeUtils::CreateStdStringFromWideString(report.standard))
        .text(" ")
        .attribute("basedOn", UnicodeUtils::CreateStdStringFromWideString(report.basedOn))
        .text(">")
        .end(stream);
    if (report.hasAbs) writeComparison(stream, report.compareAbs);
    if (report.hasRel) writeComparison(stream, report.compareRel);
    Line("</colorreport>").end(stream);
    return stream;
}
