#include "proof_template.h"

#include <kvbase/kvbase.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "bad_input.h"
#include "file_replace.h"

namespace kvtool {
namespace {

// Reports hold numbers with two decimals: what is smaller would not come back.
constexpr float kLeast = 0.01F;
constexpr float kMost = 100;

bool isWithin(float value, float least, float most) { return value >= least && value <= most; }

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

bool isUsableLimit(const KV_ColorTol *tol) {
    return std::all_of(tol->tolerances.begin(), tol->tolerances.end(),
                       [](float limit) { return isWithin(limit, 0, 1000); });
}

void refuseUnusable(const std::string &file, const KV_ColorComparison &comparison) {
    const std::vector<const KV_ColorTol *> limited = limitedBy(comparison);
    if (limited.empty())
        throw BadInput(
            file, "has no limits to judge by: give its colorstat elements dETol_av, dETol_max or dETol_p95");
    if (!std::all_of(limited.begin(), limited.end(), isUsableLimit))
        throw BadInput(file, "has a limit that is not from 0 to 1000: correct its ...Tol attributes");
    const auto hasStep = [](const KV_ColorTol *tol) { return isWithin(tol->step, kLeast, kMost); };
    if (!std::all_of(limited.begin(), limited.end(), hasStep))
        throw BadInput(file,
                       "has limits whose rounding step, behind the colon, is not from 0.01 to 100: 0.10 is "
                       "usual");
    for (const float weight : {comparison.formula.kL, comparison.formula.kC, comparison.formula.kH})
        if (!isWithin(weight, kLeast, kMost))
            throw BadInput(file, "has a weight kL, kC or kH that is not from 0.01 to 100: 1.00 is usual");
    const std::int32_t channels = ColorSpaceDimension(comparison.stispace, 0, 0, 1);
    if (channels < 1 || channels > KV_ColorPatch::kChannels)
        throw BadInput(file, "has a stispace with " + std::to_string(channels) +
                                 " device values: patches are told apart by 1 to 8 of them, as in CMYK");
    for (const KV_ColorPatch &patch : comparison.patches)
        if (!std::all_of(patch.stim, patch.stim + channels,
                         [](float value) { return isWithin(value, 0, kMost); }))
            throw BadInput(file, "has a patch \"" + patch.name + "\" whose stim is not percent, 0 to 100");
}

}  // namespace

bool ReadReport::read(std::string bytes) {
    ExpatXMLParser parser;
    return ParseBuffer(&parser, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

ProofTemplate templateOf(const std::string &file, const std::string &bytes, bool isRelative) {
    ReadReport report;
    if (!report.read(bytes)) throw BadInput(file, "is no colour report: " + report.reason);
    if (!report.hasAbs && !report.hasRel) throw BadInput(file, "is no colour report: it holds no comparison");
    if (isRelative && !report.hasRel)
        throw BadInput(file,
                       "has no media-relative comparison: take another template, or judge side by side, "
                       "without --media-relative");
    ProofTemplate made;
    made.comparison = std::move(isRelative || !report.hasAbs ? report.compareRel : report.compareAbs);
    made.standard = report.standard;
    made.basedOn = report.basedOn;
    made.hasOther = report.hasAbs && report.hasRel;
    refuseUnusable(file, made.comparison);
    return made;
}

ProofTemplate readTemplate(const std::string &file, bool isRelative) {
    return templateOf(file, readBytes(file), isRelative);
}

}  // namespace kvtool
