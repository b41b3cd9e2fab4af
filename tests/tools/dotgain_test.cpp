// kvtool dotgain, run as a user does.
#include <algorithm>

#include "run_tool.h"

namespace {

class KvToolDotgain : public ToolTest {
protected:
    // A table whose inks each have the tints 0, 50 and 100; rows are "C M Y K X Y Z".
    void writeTable(const char *name, const std::string &rows, const std::string &columns) {
        const auto count = std::count(rows.begin(), rows.end(), '\n');
        write(name,
              "CGATS.17\nNUMBER_OF_FIELDS 8\nBEGIN_DATA_FORMAT\nSAMPLE_ID CMYK_C CMYK_M CMYK_Y CMYK_K " +
                  columns + "\nEND_DATA_FORMAT\nNUMBER_OF_SETS " + std::to_string(count) + "\nBEGIN_DATA\n" +
                  rows + "END_DATA\n");
    }
};

// Halfway tints that cover 60 % of the way from paper (80) to the solid (20): 10 % gain at 50 %.
const std::string kRows =
    "1 0 0 0 0 80 80 80\n2 50 0 0 0 44 44 44\n3 100 0 0 0 20 20 20\n4 0 50 0 0 44 44 44\n5 0 100 0 0 20 20 "
    "20\n"
    "6 0 0 50 0 44 44 44\n7 0 0 100 0 20 20 20\n8 0 0 0 50 44 44 44\n9 0 0 0 100 20 20 20\n10 50 50 0 0 1 1 "
    "1\n";

TEST_F(KvToolDotgain, PrintsAndDrawsCurves) {
    writeTable("press.ti3", kRows, "XYZ_X XYZ_Y XYZ_Z");
    writeTable("lab.ti3", kRows, "LAB_L LAB_A LAB_B");
    writeTable("none.ti3", kRows, "D_RED D_GREEN D_BLUE");
    writeTable("bare.ti3", kRows.substr(0, kRows.find("9 0")), "XYZ_X XYZ_Y XYZ_Z");
    writeTable("unit.ti3", "1 0 0 0 0 .8 .9 .8\n2 100 0 0 0 .2 .3 .4\n", "XYZ_X XYZ_Y XYZ_Z");
    const Row rows[] = {
        {"dotgain press.ti3 --svg gain.svg", 0, "Cyan\t50.00\t60.00\t60.0", ""},
        {"dotgain lab.ti3", 0, "ink\tchannel\tc0", ""},
        {"dotgain none.ti3", 1, "", "none.ti3: has neither XYZ_X, XYZ_Y, XYZ_Z nor LAB_L"},
        {"dotgain bare.ti3", 1, "", "bare.ti3: has no ramp of Black"},
        {"dotgain unit.ti3", 1, "", "multiply its XYZ by 100"},
        {"dotgain gone.ti3", 1, "", "gone.ti3"},
        {"dotgain press.ti3 --svg none/gain.svg", 1, "", "none/gain.svg"},
        {"dotgain", 2, "", "TABLE"},
    };
    expectOutcomes(rows);
    const std::string drawing = contents(file("gain.svg"));
    const auto marks = [&drawing](const std::string &kind) {
        int count = 0;
        for (std::size_t at = 0; (at = drawing.find("class=\"" + kind, at)) != std::string::npos; ++at)
            ++count;
        return count;
    };
    EXPECT_EQ(marks("curve"), 4);
    EXPECT_EQ(marks("tint"), 12);
    expectNoTemporaryFile();
}

}  // namespace
