#include "proof_report.h"

#include <kvbase/kvbase.h>

#include <algorithm>
#include <sstream>
#include <string_view>

#include "bad_input.h"
#include "file_replace.h"
#include "svg_plot.h"

namespace kvtool {
namespace {

constexpr const char *kFormulas[] = {"CIE 1976", "CIE94", "CMC", "CIEDE2000"};
constexpr const char *kAllPatches = "CtrlStrip";

std::string formulaOf(const KV_ColorComparison &comparison) {
    const auto number = static_cast<std::size_t>(comparison.formula.formula);
    return kFormulas[number < std::size(kFormulas) ? number : 0];
}

std::string titleOf(const ProofGroup &group) {
    return group.name == kAllPatches ? "All patches" : group.name;
}

/// Keeps the words with which the parser refuses a document.
class ReadReport : public KV_ColorReport {
public:
    void FatalError(const KV_String &message) override { reason = message.Ptr(); }
    std::string reason;
};

/// All quantities that a comparison has limits for.
std::vector<const KV_ColorTol *> limitedBy(const KV_ColorComparison &comparison) {
    std::vector<const KV_ColorTol *> limited;
    const auto add = [&limited](const KV_ColorCheck &check) {
        for (const KV_ColorTol *tol : {&check.dE, &check.dC, &check.dH, &check.dL, &check.da, &check.db})
            if (!tol->tolerances.empty()) limited.push_back(tol);
    };
    for (const KV_ColorStat &stat : comparison.stats)
        for (const KV_ColorCheck *check : {&stat.av, &stat.max, &stat.gam, &stat.p95})
            add(*check);
    for (const KV_ColorPatch &patch : comparison.patches)
        add(patch.check);
    return limited;
}

/// "mean", or "mean dH" for other quantities than the colour difference.
std::string nameOf(const ProofFigure &figure) {
    const bool isPlain = std::string_view(figure.quantity) == "dE";
    return std::string(figure.statistic) + (isPlain ? "" : std::string(" ") + figure.quantity);
}

std::string padded(std::string text, std::size_t width) {
    if (text.size() < width) text.append(width - text.size(), ' ');
    return text;
}

std::string textOf(const ProofFigure &figure) {
    std::string text = fixed(figure.value, 1);
    if (!figure.limits.empty()) text += " of " + fixed(figure.limits[0], 1) + "  " + figure.grade;
    return text;
}

}  // namespace

ProofTemplate readTemplate(const std::string &file, bool relative) {
    std::string bytes = readBytes(file);
    ReadReport report;
    ExpatXMLParser parser;
    if (!report.ParseBuffer(&parser, bytes.data(), static_cast<std::uint32_t>(bytes.size())))
        throw BadInput(file, "is no colour report: " + report.reason);
    if (!report.hasAbs && !report.hasRel) throw BadInput(file, "is no colour report: it holds no comparison");
    const bool isRelative = report.hasRel && (relative || !report.hasAbs);
    ProofTemplate made{isRelative ? report.compareRel : report.compareAbs,
                       std::string(KV_NativePath(report.standard))};
    const std::vector<const KV_ColorTol *> limited = limitedBy(made.comparison);
    if (limited.empty())
        throw BadInput(
            file, "has no limits to judge by: give its colorstat elements dETol_av, dETol_max or dETol_p95");
    if (!std::all_of(limited.begin(), limited.end(), [](const KV_ColorTol *tol) { return tol->step > 0; }))
        throw BadInput(file, "has limits whose rounding step, behind the colon, is not above 0");
    return made;
}

void writeReport(const std::string &file, const ProofTemplate &judgedBy, const Proof &proof, bool isForced) {
    KV_ColorReport report;
    report.standard = KV_WString(judgedBy.standard.begin(), judgedBy.standard.end());
    report.basedOn = report.standard;
    const bool isRelative = proof.comparison.intent == 1;
    (isRelative ? report.hasRel : report.hasAbs) = true;
    (isRelative ? report.compareRel : report.compareAbs) = proof.comparison;
    std::ostringstream stream;
    stream << report;
    std::string bytes = stream.str();
    ReadReport back;
    ExpatXMLParser parser;
    if (!isForced && !back.ParseBuffer(&parser, bytes.data(), static_cast<std::uint32_t>(bytes.size())))
        throw BadInput(file,
                       "the report could not be read back (" + back.reason +
                           "), for reports hold names as they are: take out &, < and quotes, or use --force");
    replaceFile(file, bytes);
}

std::string summaryOf(const ProofTemplate &judgedBy, const Proof &proof) {
    std::string text = std::string("Grade ") + proof.grade + ": " + verdict(proof.grade) + "\n" +
                       std::to_string(proof.samples.size()) + " patches, " + formulaOf(proof.comparison) +
                       (judgedBy.standard.empty() ? "" : ", limits of " + judgedBy.standard) + "\n\n";
    constexpr std::size_t kName = 24, kFigure = 17;
    text += padded("Group", kName) + padded("Patches", 9) + padded("Mean", kFigure) +
            padded("Maximum", kFigure) + padded("95th percentile", kFigure) + "Grade\n";
    std::string further;
    for (const ProofGroup &group : proof.groups) {
        text += padded(titleOf(group), kName) + padded(std::to_string(group.count), 9);
        for (std::size_t i = 0; i < 3; ++i)
            text += padded(i < group.figures.size() ? textOf(group.figures[i]) : "", kFigure);
        text += group.count > 0 ? std::string(1, group.grade) + "\n" : "\n";
        for (std::size_t i = 3; i < group.figures.size(); ++i)
            further +=
                titleOf(group) + ", " + nameOf(group.figures[i]) + ": " + textOf(group.figures[i]) + '\n';
    }
    if (!further.empty()) text += '\n' + further;
    text += "\nWorst patches\n";
    for (const std::size_t at : proof.worst) {
        const KV_ColorPatch &patch = proof.samples[at].patch;
        text += "  " + padded(fixed(patch.check.dE.diff, 1), 6) + patch.check.grade + "  " +
                proof.samples[at].name + " (" + patch.group + ")\n";
    }
    for (const std::string &note : proof.notes)
        text += "Note: " + note + '\n';
    return text;
}

ProofPage pageOf(const ProofTemplate &judgedBy, const Proof &proof, const std::string &reference,
                 const std::string &measured) {
    ProofPage page;
    page.title = "Proof of " + utf8FromPath(pathFromUtf8(measured).filename());
    page.standard = judgedBy.standard;
    page.formula = formulaOf(proof.comparison);
    page.sources = {{"Reference", reference}, {"Measured", measured}};
    for (const std::string &note : proof.notes)
        page.sources.push_back({"Note", note});
    page.grade = proof.grade;
    for (const ProofGroup &group : proof.groups) {
        PageGroup &shown = page.groups.emplace_back();
        shown.name = titleOf(group);
        shown.patches = group.count;
        for (const ProofFigure &figure : group.figures)
            shown.checks.push_back({nameOf(figure), figure.value, figure.limits, figure.grade});
        if (group.name == kAllPatches)
            std::copy_if(shown.checks.begin(),
                         shown.checks.begin() +
                             std::min<std::ptrdiff_t>(3, static_cast<std::ptrdiff_t>(shown.checks.size())),
                         std::back_inserter(page.limits),
                         [](const PageCheck &check) { return !check.limits.empty(); });
    }
    for (const ProofSample &sample : proof.samples) {
        const KV_ColorPatch &patch = sample.patch;
        page.patches.push_back({sample.name,
                                patch.group,
                                {patch.ref[0], patch.ref[1], patch.ref[2]},
                                {patch.meas[0], patch.meas[1], patch.meas[2]},
                                patch.check.dE.diff,
                                patch.check.grade});
    }
    return page;
}

}  // namespace kvtool
