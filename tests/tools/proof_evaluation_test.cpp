#include "proof_evaluation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "bad_input.h"
#include "proof_template.h"

namespace {

using kvtool::BadInput;
using kvtool::MeasurementTable;
using kvtool::PatchMatch;
using kvtool::Proof;
using kvtool::ProofGroup;

MeasurementTable press(const char *name) {
    return kvtool::readMeasurementTable(std::string(KVBASE_PRESS_TABLES "/") + name + ".ti3", KV_CS_CMYK);
}

KV_ColorComparison judge(const std::vector<const char *> &groups, float limit = 5) {
    KV_ColorComparison made;
    for (const char *group : groups) {
        KV_ColorStat &stat = made.stats.emplace_back();
        stat.name = group;
        for (KV_ColorCheck *check : {&stat.av, &stat.max, &stat.p95})
            check->dE.tolerances = {limit, 1.5F * limit, 2 * limit};
        stat.max.dH.tolerances = {limit, 1.5F * limit, 2 * limit};
    }
    return made;
}

// Patches of one ink in steps of 10 %, measured darker by their number.
MeasurementTable ramp(const char *file, bool isMeasured) {
    MeasurementTable table;
    table.file = file;
    table.channels = 4;
    table.hasNames = true;
    for (int i = 0; i <= 10; ++i) {
        kvtool::TablePatch patch;
        patch.name = "S" + std::to_string(i);
        patch.device[1] = static_cast<float>(10 * i);
        patch.lab = {90 - static_cast<float>(isMeasured ? 4 * i : 3 * i), 0, 0};
        patch.line = static_cast<std::size_t>(i + 8);
        table.patches.push_back(patch);
    }
    return table;
}

std::string refusal(const MeasurementTable &reference, const MeasurementTable &measured, PatchMatch match) {
    try {
        evaluateProof(judge({"CtrlStrip"}), reference, measured, match);
    } catch (const BadInput &bad) {
        return bad.what();
    }
    return {};
}

const ProofGroup &groupOf(const Proof &proof, const std::string &name) {
    return *std::find_if(proof.groups.begin(), proof.groups.end(),
                         [&](const ProofGroup &group) { return group.name == name; });
}

// The tables of two presses: every figure beside its definition, from the samples.
TEST(Proof, FiguresAreThoseOfTheGroupsOwnSamples) {
    const MeasurementTable reference = press("FOGRA39L"), measured = press("TR006");
    const Proof proof = evaluateProof(judge({"CtrlStrip", "Solid", "Black", "Violet"}), reference, measured,
                                      PatchMatch::Automatic);
    ASSERT_EQ(proof.samples.size(), 1617U);
    for (const ProofGroup &group : proof.groups) {
        std::vector<double> differences;
        for (const auto &sample : proof.samples)
            if (group.name == "CtrlStrip" || sample.patch.group == group.name) {
                double sum = 0;  // CIE 1976 of colours that are rounded to one decimal
                for (std::size_t i = 0; i < 3; ++i)
                    sum += std::pow(double{sample.patch.ref[i]} - double{sample.patch.meas[i]}, 2);
                differences.push_back(std::sqrt(sum));
            }
        ASSERT_EQ(group.count, differences.size());
        if (group.name == "Violet") {
            EXPECT_TRUE(differences.empty() && group.figures.empty());
            continue;
        }
        std::sort(differences.begin(), differences.end());
        double sum = 0;
        for (const double difference : differences)
            sum += difference;
        ASSERT_EQ(group.figures.size(), 4U);
        const double place = 0.95 * static_cast<double>(differences.size() - 1);
        const auto at = static_cast<std::size_t>(place);
        // Single differences and figures are rounded to 0.1, each by half at most.
        EXPECT_NEAR(group.figures[0].value, sum / static_cast<double>(differences.size()), 0.1) << group.name;
        EXPECT_NEAR(group.figures[1].value, differences.back(), 0.1) << group.name;
        EXPECT_GE(group.figures[2].value, differences[at] - 0.101) << group.name;
        EXPECT_LE(group.figures[2].value, differences[std::min(at + 1, differences.size() - 1)] + 0.101)
            << group.name;
        EXPECT_STREQ(group.figures[3].quantity, "dH");
    }
    ASSERT_EQ(proof.worst.size(), 10U);
    EXPECT_EQ(proof.samples[proof.worst[0]].patch.check.dE.diff,
              groupOf(proof, "CtrlStrip").figures[1].value);
    EXPECT_EQ(proof.notes, std::vector<std::string>{"group \"Violet\" has no patches"});
    EXPECT_EQ(proof.comparison.patches.size(), 1617U - 29U);  // 29 device values come twice
    EXPECT_EQ(evaluateProof(judge({"CtrlStrip"}), reference, reference, PatchMatch::SampleName).grade, 'A');
}

TEST(Proof, GradesEachFigureByItsLimits) {
    const Proof proof = evaluateProof(judge({"CtrlStrip", "Solid Magenta", "Substrate"}), ramp("r", false),
                                      ramp("m", true), PatchMatch::DeviceValues);
    const ProofGroup &all = groupOf(proof, "CtrlStrip");  // differences 0, 1 .. 10
    EXPECT_EQ(all.figures[0].value, 5);
    EXPECT_EQ(all.figures[1].value, 10);
    EXPECT_EQ(all.figures[2].value, 9.5F);
    const char grades[] = {'A', 'C', 'C', 'A'};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(all.figures[i].grade, grades[i]) << all.figures[i].statistic;
    EXPECT_TRUE(proof.grade == 'C' && all.grade == 'C' && groupOf(proof, "Substrate").grade == 'A');
    EXPECT_EQ(proof.samples[proof.worst[0]].name, "S10");
    EXPECT_EQ(proof.samples[proof.worst[9]].name, "S1");
}

// A template's patches give their groups to the measurements, and are no measurements themselves.
TEST(Proof, TakesTheGroupsOfTheTemplate) {
    KV_ColorComparison judgedBy = judge({"Ramp"});
    judgedBy.patches.resize(3);
    const float tones[] = {30.004F, 40, 45};
    for (std::size_t i = 0; i < 3; ++i) {
        judgedBy.patches[i].name = "tone";
        judgedBy.patches[i].group = "Ramp";
        judgedBy.patches[i].stim[1] = tones[i];
    }
    const Proof proof = evaluateProof(judgedBy, ramp("r", false), ramp("m", true), PatchMatch::Automatic);
    EXPECT_EQ(proof.groups[0].count, 2U);
    EXPECT_EQ(proof.groups[0].figures[1].value, 4);
    EXPECT_EQ(proof.notes, std::vector<std::string>{"1 patch of the template not measured"});
    EXPECT_EQ(proof.comparison.patches.size(), 11U);
    EXPECT_EQ(proof.samples[3].patch.name, "tone");
    EXPECT_EQ(proof.samples[3].name, "S3");
    EXPECT_EQ(proof.samples[5].patch.group, "Mid Tone");
}

// Tables of which one lies about the paper by a factor are equal beside their own papers.
TEST(Proof, RelativeToTheMediaThePaperIsWhite) {
    KV_ColorComparison judgedBy = judge({"CtrlStrip"});
    const MeasurementTable reference = press("FOGRA39L"), measured = press("FOGRA40L");
    const Proof absolute = evaluateProof(judgedBy, reference, measured, PatchMatch::Automatic);
    judgedBy.intent = 1;
    const Proof relative = evaluateProof(judgedBy, reference, measured, PatchMatch::Automatic);
    EXPECT_EQ(relative.samples[0].patch.ref[0], 100);
    EXPECT_EQ(relative.samples[0].patch.check.dE.diff, 0);
    EXPECT_LT(relative.groups[0].figures[0].value, absolute.groups[0].figures[0].value);
    MeasurementTable noPaper = measured;
    for (auto &patch : noPaper.patches)
        patch.device[3] = std::max(patch.device[3], 1.0F);
    EXPECT_THROW(evaluateProof(judgedBy, reference, noPaper, PatchMatch::SampleName), BadInput);
}

TEST(Proof, MatchesRepeatedValuesInTheirOrder) {
    MeasurementTable reference = ramp("r", false), measured = ramp("m", false);
    for (MeasurementTable *table : {&reference, &measured})
        for (std::size_t i = 0; i < 3; ++i)
            table->patches[i].device[1] = 20;
    measured.patches.push_back(measured.patches[2]);  // a fourth of its kind goes with the last reference
    reference.patches.pop_back();
    const Proof proof = evaluateProof(judge({"CtrlStrip"}), reference, measured, PatchMatch::DeviceValues);
    EXPECT_EQ(proof.groups[0].figures[1].value, 0);
    EXPECT_EQ(proof.groups[0].count, 11U);
    EXPECT_EQ(proof.notes, std::vector<std::string>{"1 patch measured without a reference"});
}

TEST(Proof, SaysWhyTablesDontFit) {
    const MeasurementTable reference = ramp("r.txt", false);
    MeasurementTable shuffled = ramp("m.txt", true), noDevice = shuffled, noNames = shuffled,
                     others = shuffled;
    std::swap(shuffled.patches[2].device, shuffled.patches[3].device);
    noDevice.channels = 0;
    noNames.hasNames = false;
    for (auto &patch : others.patches) {
        patch.name += "x";
        patch.device[0] = 50;
    }
    struct {
        const MeasurementTable &measured;
        PatchMatch match;
        const char *why;
    } const cases[] = {
        {shuffled, PatchMatch::SampleName,
         "m.txt: line 10: sample \"S2\" has other device values than on line 10 of r.txt"},
        {shuffled, PatchMatch::Automatic, ""},
        {noDevice, PatchMatch::DeviceValues, "match by sample name"},
        {noDevice, PatchMatch::Automatic, ""},
        {noNames, PatchMatch::SampleName, "match by device values"},
        {others, PatchMatch::DeviceValues,
         "no patch is in r.txt, matched by device values: the first ones are 50.0 0.0 0.0 0.0 here"},
        {others, PatchMatch::SampleName, "\"S0x\" here and \"S0\" there"},
    };
    for (const auto &c : cases) {
        const std::string why = refusal(reference, c.measured, c.match);
        EXPECT_NE(why.find(c.why), std::string::npos) << why;
        EXPECT_EQ(why.empty(), *c.why == 0) << why;
    }
}

TEST(Proof, RefusesTemplatesThatCantJudge) {
    const std::string good =
        "<colorreport standard='S &#228;'><colorcomparison stispace='CMYK' colordifference='deltaEcmc' "
        "kL='2.00' kC='1.00' intent='side-by-side'><colorstat name='CtrlStrip' dETol_av='2 3 : 0.1'/>"
        "<colorpatch name='P' stim='0 0 0 0'/></colorcomparison></colorreport>";
    const auto changed = [&good](const std::string &from, const std::string &to) {
        return std::string(good).replace(good.find(from), from.size(), to);
    };
    const auto read = kvtool::templateOf("t.xml", good, false);
    EXPECT_TRUE(read.standard == KV_W("S \u00E4") && read.basedOn == read.standard);
    EXPECT_THROW(kvtool::templateOf("t.xml", good, true), BadInput);
    EXPECT_EQ(kvtool::templateOf("t.xml", changed("side-by-side", "media-relative"), false).comparison.intent,
              1);
    const char *const cases[][3] = {
        {"</colorreport>", "", "no element found"},
        {"<colorcomparison ", "<c ", ""},
        {"dETol_av", "dLTol_av", "no limits"},
        {"2 3", "2 1e999", "not from 0 to 1000"},
        {"2 3", "-2 3", "not from 0 to 1000"},

        {": 0.1", ": 0", "rounding step"},
        {": 0.1", ": 1e999", "rounding step"},
        {"'2.00'", "'0'", "weight"},
        {"'2.00'", "'1e-30'", "weight"},
        {"0 0 0 0", "0 0 0 101", "\"P\""},
        {"0 0 0 0", "0 -1 0 0", "\"P\""},
        {"CMYK", "CMYKOGBRV", "9 device values"},
        {"CMYK", "Nothing", "0 device values"},
    };
    for (const auto &[from, to, why] : cases)
        try {
            ADD_FAILURE() << to
                          << kvtool::templateOf("t.xml", changed(from, to), false).comparison.stats.size();
        } catch (const BadInput &bad) {
            EXPECT_NE(std::string(bad.what()).find(why), std::string::npos) << bad.what();
        }
}

}  // namespace
