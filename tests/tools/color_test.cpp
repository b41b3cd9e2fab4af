// The commands of kvtool for colours, run as a user does.
#include "run_tool.h"

namespace {

class KvToolColor : public ToolTest {};

TEST_F(KvToolColor, PrintsLights) {
    // White points of CIE 15, tables T.1 and T.3.
    const Row rows[] = {
        {"color illuminant D65", 0, "95.04", ""},
        {"color illuminant A --observer 10", 0, "\t111.1", ""},
        {"color illuminant 6504 --spectrum", 0, "560", ""},
        {"color illuminant None", 1, "", "None"},
        {"color illuminant", 2, "", "LIGHT"},
        {"color", 2, "", "subcommand"},
    };
    expectOutcomes(rows);
}

// Lightness 50 is luminance 18.42; 2.0425 is the first pair that was published with CIEDE2000.
TEST_F(KvToolColor, ConvertsAndComparesArguments) {
    const Row rows[] = {
        {"color convert xyz lab 96.42 100 82.49", 0, "L\ta\tb\n100\t0\t0\n", ""},
        {"color convert Lab Yxy 50 0 0 --white 100,100,100", 0, "Y\tx\ty\n18.418652\t0.33333334\t0.333333",
         ""},
        {"color convert LCh Lab 50 20 180 0 0 0", 0, "L\ta\tb\n50\t-20\t", ""},
        {"color convert Yxy XYZ 0 0 0 50 0.25 0.5", 0, "X\tY\tZ\n0\t0\t0\n25\t50\t25\n", ""},
        {"color convert XYZ Jab 96.42 100 82.49 --surround dim", 0, "J\ta\tb\n100\t", ""},
        {"color convert Jab XYZ 100 0 0 --white A", 0, "109.8", ""},
        {"color difference 50 2.6772 -79.7751 50 0 -82.7485", 0, "dE00\n2.042459", ""},
        {"color difference --formula 1976 50 3 4 50 0 0", 0, "dE76\n5\n", ""},
        {"color convert XYZ Luv 1 2 3", 2, "", "Luv not in"},
        {"color convert Lab XYZ 1 2 3 --white 1,2", 1, "", "1,2: is no white point X,Y,Z"},
        {"color convert Lab XYZ 1 2 3 --white -1,2,3", 1, "", "is no white point"},
        {"color convert Lab XYZ 1 2", 1, "", "2 values: are no multiple of 3 (L a b)"},
        {"color convert Lab XYZ 1 2 3,5", 1, "X\tY\tZ\n", "3,5: is no number"},
        {"color convert Lab XYZ 1e30 0 0", 1, "X\tY\tZ\n", "no result within the range"},
        {"color difference 1 2 nan 4 5 6", 1, "dE00\n", "nan: is no number"},
        {"color difference --kl 0 1 2 3 4 5 6", 2, "", "--kl"},
    };
    expectOutcomes(rows);
}

TEST_F(KvToolColor, ReadsColumnsOfSpreadsheets) {
    struct Table {
        const char *text;
        const char *arguments;
        int exitCode;
        const char *out;
        const char *err;
    } const tables[] = {
        {"50 3 4 50 0 0\r\n\r\n 1  0 0 1 0 0", "difference --formula 1976", 0, "dE76\n5\n0\n", ""},
        {"\xEF\xBB\xBF\"b\",id,L,a\n0,\"x, \"\"y\"\"\",50,-3\n", "convert Lab LCh", 0,
         "id\tL\tC\th\n\"x, \"\"y\"\"\"\t50\t3\t180\n", ""},
        {"XYZ_X;;XYZ_Y;XYZ_Z\n96.42;;100;82.49\n", "convert XYZ Lab", 0, "\tL\ta\tb\n\t100\t0\t0\n", ""},
        {"L;a;c\n1;2;3\n", "convert Lab XYZ", 1, "", "line 1 names no column b, and has no number"},
        {"L\ta\tb\n50\t0\t0\n1\t2\n", "convert Lab Lab", 1, "L\ta\tb\n50\t0\t0\n",
         "line 3 has 2 values instead of 3"},
        {"50\t0\t0,5\n", "convert Lab Lab", 1, "L\ta\tb\n",
         "line 1 \"0,5\" is no number with a decimal point"},
        {"1 2 3 4\n", "convert Lab Lab", 1, "L\ta\tb\n", "has 4 values instead of 3 (L a b)"},
        {"", "convert Lab Lab", 0, "L\ta\tb\n", ""},
    };
    for (const Table &table : tables) {
        write("in.txt", table.text);
        const std::string arguments = std::string("color ") + table.arguments + " < in.txt";
        expectOutcome({arguments.c_str(), table.exitCode, table.out, table.err}, run(arguments));
    }
}

TEST_F(KvToolColor, ListsSpaces) {
    const Row rows[] = {
        {"color spaces", 0, "\nCMYKOGB\t86\t7\tmore ink", ""},
        {"color spaces rgb", 0, "0\tRed\tRGB_R\t0\t255\t255\t0\n1\tGreen", ""},
        {"color spaces UNKNOWN", 1, "", "UNKNOWN: is no colour space"},
        {"color spaces SPEC", 1, "", "as many channels as there are wavelengths"},
    };
    expectOutcomes(rows);
}

}  // namespace
