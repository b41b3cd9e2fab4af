#include "proof_report.h"

#include <kvbase/kvbase.h>

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

#include "bad_input.h"
#include "file_replace.h"
#include "number_text.h"
#include "utf8_text.h"

namespace kvtool {
namespace {

constexpr const char *kFormulas[] = {"CIE 1976", "CIE94", "CMC", "CIEDE2000"};
constexpr const char *kAllPatches = "CtrlStrip";

std::string formulaOf(const KV_ColorComparison &comparison) {
    const auto number = static_cast<std::size_t>(comparison.formula.formula);
    return kFormulas[number < std::size(kFormulas) ? number : 0];
}

/// A text of a file as it may be shown, on one line.
std::string shown(const std::string &text) {
    std::string line = visible(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\t'; }, ' ');
    return line;
}
std::string shown(const KV_WString &text) { return shown(UnicodeUtils::CreateStdStringFromWideString(text)); }

std::string titleOf(const ProofGroup &group) {
    return group.name == kAllPatches ? "All patches" : shown(group.name);
}

/// "mean", or "mean dH" for other quantities than the colour difference.
std::string nameOf(const ProofFigure &figure) {
    const bool isPlain = std::string_view(figure.quantity) == "dE";
    return std::string(figure.statistic) + (isPlain ? "" : std::string(" ") + figure.quantity);
}

/// The text and at least one blank, so that the next column begins at width where it can.
std::string padded(std::string text, std::size_t width) {
    const auto characters = static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
    text.append(characters < width ? width - characters : 1, ' ');
    return text;
}

std::string textOf(const ProofFigure &figure) {
    std::string text = hundredths(figure.value);
    if (!figure.limits.empty()) text += " of " + hundredths(figure.limits[0]) + "  " + figure.grade;
    return text;
}

KV_ColorReport reportOf(const ProofTemplate &judgedBy, const Proof &proof) {
    KV_ColorReport report;
    report.standard = judgedBy.standard;
    report.basedOn = judgedBy.basedOn;
    const bool isRelative = proof.comparison.intent == 1;
    (isRelative ? report.hasRel : report.hasAbs) = true;
    (isRelative ? report.compareRel : report.compareAbs) = proof.comparison;
    return report;
}

/// All texts of a report in their order.
std::vector<std::string> textsOf(const KV_ColorReport &report) {
    std::vector<std::string> texts{UnicodeUtils::CreateStdStringFromWideString(report.standard),
                                   UnicodeUtils::CreateStdStringFromWideString(report.basedOn)};
    for (const KV_ColorComparison *comparison : {&report.compareAbs, &report.compareRel}) {
        for (const KV_ColorStat &stat : comparison->stats)
            texts.push_back(stat.name);
        for (const KV_ColorPatch &patch : comparison->patches)
            texts.insert(texts.end(), {patch.name, patch.group});
    }
    return texts;
}

/// Refuses texts that a report, which holds them as they are, would not give back.
void refuseLostTexts(const std::string &file, const KV_ColorReport &report, const std::string &bytes) {
    const std::vector<std::string> texts = textsOf(report);
    const auto foreign = std::find_if_not(texts.begin(), texts.end(), isUtf8);
    if (foreign != texts.end())
        throw BadInput(file, "the report could not be read back: \"" + shown(*foreign) +
                                 "\" is no UTF-8; convert the table to UTF-8, or use --force");
    ReadReport back;
    if (back.read(bytes) && textsOf(back) == texts) return;
    throw BadInput(file, "the report could not be read back as it is" +
                             (back.reason.empty() ? "" : " (" + back.reason + ')') +
                             ", for reports hold names as they are: take &, <, quotes and control "
                             "characters out of them, or use --force");
}

}  // namespace

void writeReport(const std::string &file, const ProofTemplate &judgedBy, const Proof &proof, bool isForced) {
    KV_ColorReport report = reportOf(judgedBy, proof);
    std::ostringstream stream;
    stream << report;
    if (!isForced) refuseLostTexts(file, report, stream.str());
    replaceFile(file, stream.str());
}

std::string summaryOf(const ProofTemplate &judgedBy, const Proof &proof) {
    std::string text = std::string("Grade ") + proof.grade + ": " + verdict(proof.grade) + "\n" +
                       std::to_string(proof.samples.size()) + " patches, " + formulaOf(proof.comparison) +
                       (judgedBy.standard.empty() ? "" : ", limits of " + shown(judgedBy.standard)) + "\n\n";
    constexpr std::size_t kName = 24, kFigure = 17;
    text += padded("Group", kName) + padded("Patches", 9) + padded("Mean", kFigure) +
            padded("Maximum", kFigure) + padded("95th percentile", kFigure) + "Grade\n";
    std::string further;
    for (const ProofGroup &group : proof.groups) {
        const std::string count = std::to_string(group.count);
        text += padded(titleOf(group), kName) + (group.count > 0 ? padded(count, 9) : count);
        for (std::size_t i = 0; i < 3 && i < group.figures.size(); ++i)
            text += padded(textOf(group.figures[i]), kFigure);
        if (group.count > 0) text += group.grade;
        text += '\n';
        for (std::size_t i = 3; i < group.figures.size(); ++i)
            further +=
                titleOf(group) + ", " + nameOf(group.figures[i]) + ": " + textOf(group.figures[i]) + '\n';
    }
    if (!further.empty()) text += '\n' + further;
    text += "\nWorst patches\n";
    for (const std::size_t at : proof.worst) {
        const KV_ColorPatch &patch = proof.samples[at].patch;
        text += "  " + padded(hundredths(patch.check.dE.diff), 6) + patch.check.grade + "  " +
                shown(proof.samples[at].name) + " (" + shown(patch.group) + ")\n";
    }
    for (const std::string &note : proof.notes)
        text += "Note: " + shown(note) + '\n';
    return text;
}

ProofPage pageOf(const ProofTemplate &judgedBy, const Proof &proof, const std::string &reference,
                 const std::string &measured) {
    ProofPage page;
    page.title = "Proof of " + shown(utf8FromPath(pathFromUtf8(measured).filename()));
    page.standard = shown(judgedBy.standard);
    page.formula = formulaOf(proof.comparison);
    page.sources = {{"Reference", shown(reference)}, {"Measured", shown(measured)}};
    for (const std::string &note : proof.notes)
        page.sources.push_back({"Note", shown(note)});
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
        page.patches.push_back({shown(sample.name),
                                shown(patch.group),
                                {patch.ref[0], patch.ref[1], patch.ref[2]},
                                {patch.meas[0], patch.meas[1], patch.meas[2]},
                                patch.check.dE.diff,
                                patch.check.grade});
    }
    return page;
}

}  // namespace kvtool
