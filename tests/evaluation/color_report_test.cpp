#include <gtest/gtest.h>
#include <kvbase/evaluation/kv_color_report.h>
#include <kvbase/xml/expat_xml_parser.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "temp_folder.h"

namespace {

std::string golden() {
    std::stringstream text;
    text << std::ifstream(KVBASE_TEST_DATA "/evaluation/report.xml", std::ios::binary).rdbuf();
    return text.str();
}

bool read(KV_ColorReport &report, std::string text) {
    ExpatXMLParser parser;
    return report.ParseBuffer(&parser, text.data(), static_cast<std::uint32_t>(text.size()));
}

std::string written(KV_ColorReport &report) {
    std::ostringstream out;
    out << report;
    return out.str();
}

std::string withoutAmpersand(std::string text) {
    std::replace(text.begin(), text.end(), '&', '+');
    return text;
}

std::vector<KV_ColorTol *> six(KV_ColorCheck &c) { return {&c.dE, &c.dC, &c.dH, &c.dL, &c.da, &c.db}; }

void limit(KV_ColorTol &tol, bool isList) {
    tol.tolerances = isList ? std::vector<float>{1, 2, 3} : std::vector<float>{5};
    tol.step = isList ? 0.1F : 0.25F;
}
void limitInTurn(KV_ColorCheck &check, bool isList) {
    for (KV_ColorTol *tol : six(check)) {
        limit(*tol, isList);
        isList = !isList;
    }
}

// What scripts/make_golden_reports describes.
void fill(KV_ColorReport &report) {
    report.standard = KV_W("Pr\u00FCfung \u20AC");
    report.basedOn = KV_W("ISO 12647");
    report.hasAbs = report.hasRel = true;
    KV_ColorComparison &c = report.compareAbs;
    c.formula = {3, 1, 1.5F, 2};
    c.stats.resize(2);
    c.stats[0].name = "empty";
    c.stats[1].name = "CtrlStrip";
    limitInTurn(c.stats[1].av, true);
    limitInTurn(c.stats[1].max, false);
    limit(c.stats[1].gam.dE, true);
    limit(c.stats[1].gam.dC, true);  // not written
    limit(c.stats[1].p95.dE, false);
    c.patches.resize(2);
    KV_ColorPatch &patch = c.patches[0];
    patch.name = "A1";
    patch.group = "Solid";
    patch.stim[0] = 100;
    patch.stim[2] = 12.5F;
    limitInTurn(patch.check, true);
    const float ref[] = {50.5F, -10.25F, 0}, meas[] = {51, -9.75F, 1};
    std::copy_n(ref, 3, patch.ref);
    std::copy_n(meas, 3, patch.meas);
    c.patches[1].name = "a & b";
    limit(c.blackpoint.dE, true);
    limit(c.whitepoint.dE, false);
    report.compareRel.formula = {2, 2, 1, 1};
    report.compareRel.stispace = KV_CS_RGB;
    report.compareRel.intent = 1;
}

TEST(ColorReport, IsWrittenByteForByte) {
    KV_ColorReport report, copy;
    fill(report);
    EXPECT_EQ(written(report), golden());
    EXPECT_FALSE(read(copy, golden()));  // for the ampersand
    copy = report;
    EXPECT_EQ(written(copy), golden());
    report.hasAbs = report.hasRel = false;
    EXPECT_EQ(written(report).find("<colorcomparison"), std::string::npos);
}

// What comes back is what was written, less what a measurement gives.
TEST(ColorReport, ReadsBackATemplate) {
    KV_ColorReport expected, report;
    fill(expected);
    KV_ColorComparison &c = expected.compareAbs;
    for (KV_ColorCheck *check : {&c.stats[1].av, &c.stats[1].max})
        for (KV_ColorTol *tol : {&check->dL, &check->da, &check->db})
            *tol = {};
    std::fill_n(c.patches[0].ref, 3, 0.0F);
    std::fill_n(c.patches[0].meas, 3, 0.0F);
    c.patches[1].name = "a + b";
    expected.compareRel.blackpoint = c.blackpoint;  // a comparison goes out from the frame of the one before
    expected.compareRel.whitepoint = c.whitepoint;
    ASSERT_TRUE(read(report, withoutAmpersand(golden())));
    EXPECT_EQ(written(report), written(expected));
    EXPECT_TRUE(report.compareAbs.patches[0].parsed);
    EXPECT_TRUE(report.compareAbs.stats[1].gam.dC.tolerances.empty());
    EXPECT_FLOAT_EQ(report.compareAbs.stats[0].av.dE.step, 0.1F);
}

TEST(ColorReport, TakesBrokenFilesUpToTheBreak) {
    const std::string whole = withoutAmpersand(golden());
    const std::size_t firstEnd = whole.find("</colorcomparison>") + 18;
    KV_ColorReport report;
    for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
        ASSERT_FALSE(read(report, whole.substr(0, size))) << size;
        if (size > 200) {
            EXPECT_EQ(report.hasAbs, size >= firstEnd) << size;
        }
    }
    ASSERT_TRUE(read(report, whole));  // nothing of the broken ones is left in it
    EXPECT_EQ(report.compareAbs.patches.size(), 2U);
    EXPECT_EQ(report.compareAbs.patches[0].check.dE.tolerances.size(), 3U);
    EXPECT_FALSE(report.ParseBuffer(nullptr, nullptr, 0));
    EXPECT_TRUE(report.hasAbs);
    EXPECT_FALSE(report.ParseFile(nullptr, {}));
    EXPECT_FALSE(report.hasAbs);
}

// The weights of each formula, and the words of formula and intent, both ways.
TEST(ColorReport, NamesFormulasAndIntents) {
    struct {
        std::int32_t formula;
        const char *text;
    } const rows[] = {
        {0, "\"deltaEab\" intent = \"side-by-side\" >"},
        {1, "\"deltaE94\" kL = \"2.00\" kC = \"3.00\" kH = \"4.00\" intent = \"side-by-side\" >"},
        {2, "\"deltaEcmc\" kL = \"2.00\" kC = \"3.00\" intent = \"side-by-side\" >"},
        {3, "\"deltaE00\" kL = \"2.00\" kC = \"3.00\" kH = \"4.00\" intent = \"side-by-side\" >"},
        {9, "\"deltaEab\" intent = \"side-by-side\" >"},
    };
    for (const auto &row : rows) {
        KV_ColorReport report, back;
        report.hasAbs = true;
        report.compareAbs.formula = {row.formula, 2, 3, 4};
        const std::string text = written(report);
        EXPECT_NE(text.find(std::string("colordifference = ") + row.text), std::string::npos) << text;
        ASSERT_TRUE(read(back, text));
        EXPECT_EQ(written(back), text);
    }
    KV_ColorReport report;
    ASSERT_TRUE(read(report,
                     "<r><colorcomparison intent='media-relative'/><colorcomparison intent='?'>"
                     "<colorpatch name='p'/></colorcomparison></r>"));
    EXPECT_TRUE(report.hasRel && !report.hasAbs) << "an unknown intent is that of the one before";
    EXPECT_EQ(report.compareRel.patches.size(), 1U);
}

TEST(ColorReport, ReadsTheTwelveLimitsOfAGroup) {
    const char *const quantities[] = {"dE", "dC", "dH"}, *const statistics[] = {"av", "max", "gam", "p95"};
    std::string text = "<colorcomparison><colorstat name='g'";
    for (int i = 0; i < 12; ++i)
        text += std::string(" ") + quantities[i % 3] + "Tol_" + statistics[i / 3] + "='" + std::to_string(i) +
                "'";
    const TempFolder folder;
    std::ofstream(folder / "r.xml") << text + "/></colorcomparison>";
    KV_ColorReport report, copy;
    ExpatXMLParser parser;
    ASSERT_TRUE(report.ParseFile(&parser, KV_FileSpecFromNative(folder.native("r.xml").c_str())));
    KV_ColorStat &stat = report.compareAbs.stats.at(0);
    int i = 0;
    for (KV_ColorCheck *check : {&stat.av, &stat.max, &stat.gam, &stat.p95})
        for (const KV_ColorTol *tol : {&check->dE, &check->dC, &check->dH})
            EXPECT_EQ(tol->tolerances, std::vector<float>{static_cast<float>(i++)});
    report.metaData.texts[16] = report.metaData.furtherTexts[10] = report.reportType = KV_W("kept");
    report.metaData.number = 7;
    copy = report;
    EXPECT_TRUE(copy.GetMetaData().texts[16] == KV_W("kept") &&
                copy.metaData.furtherTexts[10] == KV_W("kept") && copy.metaData.number == 7 &&
                copy.GetReportType() == KV_W("kept"));
}

struct ToleranceCase {
    const char *text;
    std::vector<float> tolerances;
    float step;
};
TEST(ColorReport, ReadsTolerancesAndDeviceValues) {
    const ToleranceCase rows[] = {{"", {}, 0.1F},
                                  {" 1  2\t3.5 ", {1, 2, 3.5F}, 0.1F},
                                  {"1 2 : 0.5", {1, 2}, 0.5F},
                                  {": 0.5", {}, 0.5F},
                                  {":", {}, 0.1F},
                                  {"x 2", {0, 2}, 0.1F}};
    for (const ToleranceCase &row : rows) {
        KV_ColorReport report;
        ASSERT_TRUE(
            read(report,
                 std::string("<colorreport standard='s'><colorcomparison intent='?'><colorstat dCTol_p95='") +
                     row.text + "'/><colorpatch stim='1 2 3 4 5 6 7 8 9 10' dbTol='" + row.text +
                     "'/><colorpatch/></colorcomparison></colorreport>"));
        const auto &[stats, patches] = std::tie(report.compareAbs.stats, report.compareAbs.patches);
        EXPECT_EQ(stats.at(0).p95.dC.tolerances, row.tolerances) << row.text;
        EXPECT_EQ(patches.at(0).check.db.tolerances, row.tolerances) << row.text;
        EXPECT_EQ(patches.at(0).check.db.step, row.step) << row.text;
        EXPECT_EQ(patches.at(0).stim[7], 8);
        EXPECT_EQ(patches.at(0).ref[0], 0);
        EXPECT_TRUE(patches.at(1).check.db.tolerances.empty());
        EXPECT_EQ(report.basedOn, report.standard);
    }
}

}  // namespace
