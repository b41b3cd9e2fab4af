#include "proof_evaluation.h"

#include <kvbase/color/kv_ct_cielab.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

#include "bad_input.h"
#include "proof_matching.h"
#include "utf8_text.h"

namespace kvtool {
namespace {

constexpr std::int32_t kMediaRelative = 1;
constexpr const char *kAllPatches = "CtrlStrip";

struct Quantity {
    const char *name;
    KV_ColorTol KV_ColorCheck::*tol;
};
constexpr Quantity kQuantities[] = {{"dE", &KV_ColorCheck::dE}, {"dC", &KV_ColorCheck::dC},
                                    {"dH", &KV_ColorCheck::dH}, {"dL", &KV_ColorCheck::dL},
                                    {"da", &KV_ColorCheck::da}, {"db", &KV_ColorCheck::db}};

struct Statistic {
    const char *name;
    KV_ColorCheck KV_ColorStat::*check;
};
constexpr Statistic kStatistics[] = {{"mean", &KV_ColorStat::av},
                                     {"maximum", &KV_ColorStat::max},
                                     {"95th percentile", &KV_ColorStat::p95},
                                     {"mean of the gamut hull", &KV_ColorStat::gam}};
constexpr std::size_t kAlwaysShown = 3;

std::string counted(std::size_t count, const std::string &what) {
    return std::to_string(count) + (count == 1 ? " patch " : " patches ") + what;
}

/// The template as the judge of a new measurement: its patches name groups, and no more.
KV_ColorComparison prepared(const KV_ColorComparison &judgedBy) {
    KV_ColorComparison made = judgedBy;
    made.ClearDiffs();
    for (KV_ColorPatch &patch : made.patches) {
        const auto device = deviceOf(deviceKey(patch.stim));
        std::copy(device.begin(), device.end(), patch.stim);
    }
    if (made.stats.empty()) made.stats.emplace_back().name = kAllPatches;
    return made;
}

using LabOf = std::array<float, 3> MatchedPatch::*;

/// Brings one side of the pairs to a white of its own paper, the first patch without ink.
void makeRelative(std::vector<MatchedPatch> &patches, LabOf lab, const std::string &file) {
    const auto paper = std::find_if(patches.begin(), patches.end(), [](const MatchedPatch &patch) {
        return deviceKey(patch.device.data()) == DeviceKey{};
    });
    if (paper == patches.end())
        throw BadInput(file,
                       "has no patch without ink in common with the other table: a media-relative comparison "
                       "needs the paper; measure it too, or take a side-by-side template");
    const KV_CTCielab absolute;
    float white[3];
    std::array<float, 3> paperLab = (*paper).*lab;
    absolute.Lab2XYZ(paperLab.data(), white, 1);
    if (*std::min_element(white, white + 3) < 1)
        throw BadInput(file,
                       "its patch without ink, \"" + visible(paper->name) +
                           "\", is as dark as ink, and a media-relative comparison needs the paper; measure "
                           "it again, or take a side-by-side template");
    const KV_CTCielab relative(white);
    for (MatchedPatch &patch : patches) {
        float xyz[3];
        absolute.Lab2XYZ((patch.*lab).data(), xyz, 1);
        relative.XYZ2Lab(xyz, (patch.*lab).data(), 1);
    }
}

/// Adds all pairs at once.
void addAll(KV_ColorComparison &comparison, const std::vector<MatchedPatch> &pairs) {
    const auto channels = static_cast<std::size_t>(ColorSpaceDimension(comparison.stispace, 0, 0, 1));
    std::vector<std::string> names, groups(pairs.size(), "Unknown");
    std::vector<float> device, reference, measured, differences;
    for (const MatchedPatch &pair : pairs) {
        names.push_back(pair.name);
        device.insert(device.end(), pair.device.begin(),
                      pair.device.begin() + static_cast<std::ptrdiff_t>(channels));
        reference.insert(reference.end(), pair.reference.begin(), pair.reference.end());
        measured.insert(measured.end(), pair.measured.begin(), pair.measured.end());
    }
    comparison.AddPatches(static_cast<std::uint32_t>(pairs.size()), names.data(), groups.data(),
                          device.data(), reference.data(), measured.data(), differences);
}

/// Every pair as a patch of its own, also where several have the same device values.
std::vector<ProofSample> judgeOneByOne(const KV_ColorComparison &judge, std::vector<MatchedPatch> pairs) {
    std::map<DeviceKey, const KV_ColorPatch *> known;
    for (const KV_ColorPatch &patch : judge.patches)
        known.try_emplace(deviceKey(patch.stim), &patch);
    KV_ColorComparison alone = judge;
    std::vector<ProofSample> samples;
    std::vector<float> differences;
    for (MatchedPatch &pair : pairs) {
        alone.patches.clear();
        const auto found = known.find(deviceKey(pair.device.data()));
        if (found != known.end()) alone.patches.push_back(*found->second);
        alone.AddPatch(pair.name, "Unknown", pair.device.data(), pair.reference.data(), pair.measured.data(),
                       differences);
        samples.push_back({pair.name, pair.line, alone.patches[0]});
    }
    return samples;
}

bool isIn(const ProofSample &sample, const std::string &group) {
    return group == kAllPatches || sample.patch.group == group;
}

/// Works a group's sums out, with the percentile of its own patches.
char calculate(const KV_ColorComparison &frame, KV_ColorStat &stat, const std::vector<ProofSample> &samples) {
    std::vector<float> differences;
    for (const ProofSample &sample : samples)
        if (isIn(sample, stat.name)) differences.push_back(sample.patch.check.dE.diff);
    KV_ColorComparison alone;
    alone.formula = frame.formula;
    alone.stats.push_back(stat);
    alone.CalcStats(differences);
    stat = alone.stats[0];
    return alone.grade;
}

char gradeOf(const KV_ColorTol &tol) {
    KV_ColorCheck alone;
    alone.dE = tol;
    return alone.CheckTols();
}

ProofGroup groupOf(KV_ColorStat &stat, char grade) {
    ProofGroup group;
    group.name = stat.name;
    group.count = stat.count;
    group.grade = grade;
    const auto add = [&](const Statistic &statistic, const Quantity &quantity) {
        const KV_ColorTol &tol = stat.*statistic.check.*quantity.tol;
        group.figures.push_back({statistic.name, quantity.name, tol.diff, tol.tolerances, gradeOf(tol)});
    };
    if (stat.count == 0) return group;
    for (std::size_t i = 0; i < kAlwaysShown; ++i)
        add(kStatistics[i], kQuantities[0]);
    for (const Statistic &statistic : kStatistics)
        for (const Quantity &quantity : kQuantities) {
            const bool isShown = quantity.tol == &KV_ColorCheck::dE && statistic.check != &KV_ColorStat::gam;
            const bool isCounted = statistic.check != &KV_ColorStat::gam || stat.gamutCount > 0;
            if (!isShown && isCounted && !(stat.*statistic.check.*quantity.tol).tolerances.empty())
                add(statistic, quantity);
        }
    return group;
}

std::vector<std::size_t> worstOf(const std::vector<ProofSample> &samples) {
    constexpr std::size_t kMost = 10;
    std::vector<std::size_t> order(samples.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return samples[a].patch.check.dE.diff > samples[b].patch.check.dE.diff;
    });
    order.resize(std::min(order.size(), kMost));
    return order;
}

/// Takes the patches of the template that were not measured out of the comparison; how many these are.
std::size_t removeUnmeasured(KV_ColorComparison &comparison, const std::vector<MatchedPatch> &pairs) {
    std::set<DeviceKey> measured;
    for (const MatchedPatch &pair : pairs)
        measured.insert(deviceKey(pair.device.data()));
    return std::erase_if(comparison.patches, [&](const KV_ColorPatch &patch) {
        return measured.count(deviceKey(patch.stim)) == 0;
    });
}

void noteLeftOut(Proof &proof, const MatchedPatches &matched, std::size_t unmeasured) {
    if (matched.onlyReference > 0)
        proof.notes.push_back(counted(matched.onlyReference, "of the reference not measured"));
    if (matched.onlyMeasured > 0)
        proof.notes.push_back(counted(matched.onlyMeasured, "measured without a reference"));
    if (unmeasured > 0) proof.notes.push_back(counted(unmeasured, "of the template not measured"));
    for (const ProofGroup &group : proof.groups)
        if (group.count == 0) proof.notes.push_back("group \"" + group.name + "\" has no patches");
    const auto hasLimits = [](const KV_ColorCheck &check) { return !check.dE.tolerances.empty(); };
    if (hasLimits(proof.comparison.blackpoint) || hasLimits(proof.comparison.whitepoint))
        proof.notes.emplace_back("limits of black point and white point are not judged");
}

}  // namespace

Proof evaluateProof(const KV_ColorComparison &judgedBy, const MeasurementTable &reference,
                    const MeasurementTable &measured, PatchMatch match) {
    MatchedPatches matched = matchPatches(reference, measured, match);
    if (judgedBy.intent == kMediaRelative) {
        makeRelative(matched.patches, &MatchedPatch::reference, reference.file);
        makeRelative(matched.patches, &MatchedPatch::measured, measured.file);
    }
    Proof proof;
    proof.comparison = prepared(judgedBy);
    proof.samples = judgeOneByOne(proof.comparison, matched.patches);
    const std::size_t unmeasured = removeUnmeasured(proof.comparison, matched.patches);
    addAll(proof.comparison, matched.patches);
    for (KV_ColorStat &stat : proof.comparison.stats) {
        const char grade = calculate(proof.comparison, stat, proof.samples);
        proof.comparison.grade = std::max(proof.comparison.grade, grade);
        proof.groups.push_back(groupOf(stat, grade));
    }
    proof.grade = proof.comparison.grade;
    proof.worst = worstOf(proof.samples);
    noteLeftOut(proof, matched, unmeasured);
    return proof;
}

}  // namespace kvtool
