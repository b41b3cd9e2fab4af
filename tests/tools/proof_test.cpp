// kvtool proof, run as a user does.
#include <kvbase/kvbase.h>

#include <algorithm>
#include <vector>

#include "run_tool.h"

namespace {

class KvToolProof : public ToolTest {
protected:
    void writeTemplate(const char *name, const std::string &standard, const std::string &intent) {
        write(name,
              "<colorreport standard=\"" + standard +
                  "\" basedOn=\"ISO 12647\"><colorcomparison stispace=\"CMYK\" "
                  "colordifference=\"deltaEab\" intent=\"" +
                  intent +
                  "\"><colorstat name=\"CtrlStrip\" dETol_av=\"2 3 4 : 0.1\" dETol_max=\"5 6 7 : "
                  "0.1\"/><colorstat name=\"Solids\" dETol_max=\"4.25 : 0.01\"/><colorpatch "
                  "name=\"Full cyan\" group=\"Solids\" stim=\"100 0 0 0\"/></colorcomparison></colorreport>");
    }
    // Rows are "NAME C M Y K L a b".
    void writeTable(const char *name, const std::string &rows) {
        write(name,
              "CGATS.17\nNUMBER_OF_FIELDS 8\nBEGIN_DATA_FORMAT\nSAMPLE_NAME CMYK_C CMYK_M CMYK_Y CMYK_K "
              "LAB_L LAB_A LAB_B\n"
              "END_DATA_FORMAT\nNUMBER_OF_SETS " +
                  std::to_string(std::count(rows.begin(), rows.end(), '\n')) + "\nBEGIN_DATA\n" + rows +
                  "END_DATA\n");
    }
};

const std::string kReference = "W 0 0 0 0 95 0 -2\nC 100 0 0 0 55 -37 -50\nG 50 40 40 0 60 0 0\n";

TEST_F(KvToolProof, JudgesAndRefuses) {
    writeTemplate("side.xml", "Pr\xC3\xBC\x66ung", "side-by-side");
    writeTemplate("relative.xml", "House", "media-relative");
    write("bare.xml", "<colorreport standard=\"\"><colorcomparison/></colorreport>");
    write("broken.xml", "<colorreport>");
    writeTable("wanted.ti3", kReference);
    writeTable("good.ti3", "W 0 0 0 0 94 0 -2\nC 100 0 0 0 53 -37 -50\nG 50 40 40 0 60 0 0\n");
    writeTable("dark.ti3", "W 0 0 0 0 88.5 0 -2\nC 100 0 0 0 55 -37 -50\nG 50 40 40 0 60 0 0\n");
    writeTable("black.ti3", "W 0 0 0 0 0 0 0\nC 100 0 0 0 55 -37 -50\n");
    writeTable("other.ti3", "X 1 2 3 4 50 0 0\nY 5 6 7 8 90 0 0\n");
    writeTable("quoted.ti3", "W 0 0 0 0 94 0 -2\n\"B&W\" 100 100 100 0 20 0 0\n");
    writeTable("wanted2.ti3", kReference + "K 100 100 100 0 20 0 0\n");
    const Row rows[] = {
        {"proof side.xml wanted.ti3 good.ti3 --report r.xml --html p.html --fail-above A", 0,
         "Grade A: Within all limits\n3 patches, CIE 1976, limits of Pr\xC3\xBC\x66ung", ""},
        {"proof side.xml wanted.ti3 good.ti3", 0,
         "\nSolids                  1        2.0              2.0 of 4.25  A", ""},
        {"proof side.xml wanted.ti3 dark.ti3", 0, "Grade C: ", ""},
        {"proof side.xml wanted.ti3 dark.ti3 --fail-above c", 0, "6.5 of 5.0  C", ""},
        {"proof side.xml wanted.ti3 dark.ti3 --fail-above B --html failed.html", 3,
         "Grade C: ", "dark.ti3: grade C is worse than B"},
        {"proof relative.xml wanted.ti3 dark.ti3 --media-relative", 0, "limits of House", ""},
        {"proof relative.xml wanted.ti3 black.ti3", 1, "", "is as dark as ink"},
        {"proof side.xml wanted.ti3 good.ti3 --media-relative", 1, "", "has no media-relative comparison"},
        {"proof side.xml wanted.ti3 good.ti3 --match name", 0, "3 patches", ""},
        {"proof side.xml wanted.ti3 other.ti3", 1, "", "(--match name)"},
        {"proof side.xml wanted.ti3 other.ti3 --match name", 1, "", "(--match device)"},
        {"proof side.xml wanted2.ti3 quoted.ti3 --report q.xml", 1, "", "take &, <, quotes"},
        {"proof side.xml wanted2.ti3 quoted.ti3 --report q.xml --force", 0, "B&W (Unknown)", ""},
        {"proof side.xml gone.ti3 good.ti3", 1, "", "gone.ti3"},
        {"proof wanted.ti3 wanted.ti3 good.ti3", 1, "", "wanted.ti3: is no colour report: "},
        {"proof broken.xml wanted.ti3 good.ti3", 1, "", "no element found at line 1"},
        {"proof bare.xml wanted.ti3 good.ti3", 1, "", "has no limits to judge by"},
        {"proof side.xml wanted.ti3 good.ti3 --report none/r.xml", 1, "", "none/r.xml"},
        {"proof side.xml wanted.ti3 good.ti3 --fail-above AB", 2, "", "AB is no grade"},
        {"proof side.xml wanted.ti3 good.ti3 --match colour", 2, "", "--match"},
        {"proof side.xml wanted.ti3", 2, "", "MEASURED"},
    };
    expectOutcomes(rows);
    expectNoTemporaryFile();
    EXPECT_NE(contents(file("failed.html")).find("<h1>Proof of dark.ti3</h1>"), std::string::npos);
    EXPECT_NE(contents(file("q.xml")).find("name = \"B&W\""), std::string::npos);
}

// What a proof wrote is the next one's template, and judges the same.
TEST_F(KvToolProof, ReportsAreTemplates) {
    writeTemplate("side.xml", "&#8364; &#169;", "side-by-side");
    writeTable("wanted.ti3", kReference);
    writeTable("dark.ti3", "W 0 0 0 0 88.5 0 -2\nC 100 0 0 0 55 -37 -50\nG 50 40 40 0 60 0 0\n");
    const std::string tables = " wanted.ti3 dark.ti3 --report ";
    const Outcome first = run("proof side.xml" + tables + "1.xml"),
                  second = run("proof 1.xml" + tables + "2.xml");
    EXPECT_EQ(first.err + second.err, "");
    EXPECT_EQ(first.out, second.out);
    EXPECT_EQ(contents(file("1.xml")), contents(file("2.xml")));
    KV_ColorReport report;
    ExpatXMLParser parser;
    ASSERT_TRUE(report.ParseFile(&parser, KV_FileSpecFromNative(file("1.xml").string().c_str())));
    EXPECT_TRUE(report.hasAbs && !report.hasRel);
    EXPECT_EQ(report.standard, KV_W("\u20AC \u00A9"));
    EXPECT_EQ(report.basedOn, KV_W("ISO 12647"));
    ASSERT_EQ(report.compareAbs.patches.size(), 3U);
    EXPECT_EQ(report.compareAbs.patches[0].name, "Full cyan") << "the template's first, with its own name";
    EXPECT_EQ(report.compareAbs.patches[2].group, "Tertiary Color");
    EXPECT_EQ(report.compareAbs.stats[1].max.dE.tolerances, std::vector<float>{4.25F});
}

}  // namespace
