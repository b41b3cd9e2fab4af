#include "measurement_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bad_input.h"

namespace {

using kvtool::BadInput;
using kvtool::MeasurementTable;
using kvtool::measurementTableOf;

// Line 4 names the columns; the rows begin on line 8.
std::string table(const std::string &columns, const std::vector<std::string> &rows,
                  const char *end = "END_DATA\n") {
    std::size_t fields = 1;
    for (const char c : columns)
        fields += c == ' ';
    std::string text = "CTI3\nNUMBER_OF_FIELDS " + std::to_string(fields) + "\nBEGIN_DATA_FORMAT\n" +
                       columns + "\nEND_DATA_FORMAT\nNUMBER_OF_SETS " + std::to_string(rows.size()) +
                       "\nBEGIN_DATA\n";
    for (const std::string &row : rows)
        text += row + '\n';
    return text + end;
}
std::string cmyk(const std::vector<std::string> &rows, const char *end = "END_DATA\n") {
    return table("SAMPLE_ID CMYK_C CMYK_M CMYK_Y CMYK_K LAB_L LAB_A LAB_B", rows, end);
}
std::string replaced(std::string text, const std::string &from, const std::string &to) {
    return text.replace(text.find(from), from.size(), to);
}

const std::string kPaper = "1 0 0 0 0 95 0 -2", kCyan = "2 100 0 0 0 55 -37 -50";

// The reason why a text is refused, or "" when it isn't.
std::string refusal(const std::string &text) {
    try {
        measurementTableOf("t.txt", text, KV_CS_CMYK);
    } catch (const BadInput &bad) {
        return bad.what();
    }
    return {};
}

const char kFurther[] =
    "CAL\nNUMBER_OF_FIELDS 1\nBEGIN_DATA_FORMAT\nX\nEND_DATA_FORMAT\nNUMBER_OF_SETS "
    "1\nBEGIN_DATA\n1\nEND_DATA\n";

TEST(MeasurementTable, ReadsWhatExportersWrite) {
    const std::string good =
        cmyk({"A1 0 0 0 0 95.01 .5 -2", "\"two words\" 33.33 1e1 +5 100.003 55 -37 -50 # note", ""});
    const std::string variants[] = {
        replaced(good, "SETS 3", "SETS 2"),
        "\xEF\xBB\xBF" + replaced(good, "SETS 3", "SETS\t2"),
        replaced(replaced(good, "SETS 3", "SETS 2"), "LAB_L", "Lab_l"),
        replaced(good, "SETS 3", "SETS 2") + kFurther,
    };
    for (const std::string &text : variants) {
        const MeasurementTable read = measurementTableOf("t.txt", text, KV_CS_CMYK);
        ASSERT_EQ(read.patches.size(), 2U) << text;
        EXPECT_TRUE(read.hasDevice() && read.hasNames);
        EXPECT_EQ(read.patches[0].name, "A1");
        EXPECT_EQ(read.patches[0].lab, (std::array<float, 3>{95.01F, .5F, -2}));
        EXPECT_EQ(read.patches[1].name, "two words");
        EXPECT_EQ(read.patches[1].line, 9U);
        EXPECT_EQ(read.patches[1].device, (std::array<float, 8>{33.33F, 10, 5, 100.003F}));
    }
    std::string crlf;
    for (const char c : variants[0])
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(measurementTableOf("t.txt", crlf, KV_CS_CMYK).patches[1].line, 9U);
    EXPECT_FALSE(measurementTableOf("t.txt", variants[0], KV_CS_RGB).hasDevice());
}

struct BadTable {
    const char *name;
    std::string text;
    const char *place;  // where
    const char *cure;
};
const BadTable kBadTables[] = {
    {"empty", "", "t.txt: is empty", "export"},
    {"blank", " \r\n\n", "t.txt: is empty", "export"},
    {"UTF-16", std::string("C\0G\0", 4), "t.txt: is no text", "save it as plain text"},
    {"another format", "<?xml version=\"1.0\"?>\n", "no CGATS table", "export the measurement as CGATS"},
    {"format cut", "CTI3\nBEGIN_DATA_FORMAT\nA B\n", "line 2: ", "export"},
    {"data cut", cmyk({kPaper, kCyan}, ""), "line 10: ", "it was cut; export it again"},
    {"row cut", cmyk({kPaper, "2 100 0 0 0 55"}), "line 9, column LAB_A: ", "a line with all columns"},
    {"row too long", cmyk({kPaper, "dark cyan 100 0 0 0 55 -37 -50"}), "line 9: \"-50\"",
     "into double quotes"},
    {"rows lost", replaced(cmyk({kPaper, kCyan}), "SETS 2", "SETS 3"), "line 6: NUMBER_OF_SETS is \"3\"",
     "correct"},
    {"column lost", replaced(cmyk({kPaper}), "FIELDS 8", "FIELDS 9"), "line 2: NUMBER_OF_FIELDS", "correct"},
    {"no count", replaced(cmyk({kPaper}), "NUMBER_OF_SETS 1", ""), "NUMBER_OF_SETS",
     "add the line \"NUMBER_OF_SETS 1\""},
    {"no rows", cmyk({}), "line 7: ", "measure"},
    {"no columns", "CTI3\nBEGIN_DATA\n1 2\nEND_DATA\n", "line 2: ", "export"},
    {"refers to a file", ".INCLUDE \"/etc/passwd\"\n" + cmyk({kPaper}), "line 1: ", "put all into one file"},
    {"what only Little CMS refuses", "a b c d\n" + cmyk({kPaper}), "no valid CGATS table", "export"},
    {"Lab missing", table("SAMPLE_ID CMYK_C CMYK_M CMYK_Y CMYK_K XYZ_X", {"1 0 0 0 0 84"}),
     "no columns LAB_L", "export the table with CIELAB"},
    {"decimal comma", cmyk({kPaper, "2 100 0 0 0 55,5 -37 -50"}), "line 9, column LAB_L: \"55,5\"",
     "decimal points"},
    {"no number", cmyk({"1 0 - 0 0 95 0 -2"}), "line 8, column CMYK_M: \"-\"", "correct"},
    {"not-a-number", cmyk({"1 0 0 0 0 95 nan -2"}), "line 8, column LAB_A: \"nan\"", "correct"},
    {"0 to 1", cmyk({kPaper, "2 0 0.5 0 1 55 -37 -50"}), "line 9, column CMYK_K: \"1\"",
     "multiply its device values by 100"},
    {"0 to 255", cmyk({kPaper, "2 0 51 0 255 55 -37 -50"}), "line 9, column CMYK_K: \"255\"",
     "divide its device values by 2.55"},
    {"a little above", cmyk({kPaper, "2 0 100.01 0 0 55 -37 -50"}), "line 9, column CMYK_M: \"100.01\"",
     "0 to 100"},
    {"negative", cmyk({kPaper, "2 0 0 -0.1 0 55 -37 -50"}), "line 9, column CMYK_Y: \"-0.1\"", "0 to 100"},
    {"L* 0 to 1", cmyk({"1 0 0 0 0 0.95 0 0", "2 100 0 0 0 0.55 -0.37 0"}), "line 8, column LAB_L: \"0.95\"",
     "plain CIELAB"},
    {"encoded L*", cmyk({"1 0 0 0 0 242 128 126"}), "line 8, column LAB_L: \"242\"", "not encoded"},
    {"encoded a*", cmyk({"1 0 0 0 0 95 32896 0"}), "line 8, column LAB_A: \"32896\"", "not encoded"},
};

TEST(MeasurementTable, NamesThePlaceAndTheCure) {
    for (const BadTable &bad : kBadTables) {
        const std::string why = refusal(bad.text);
        EXPECT_NE(why.find(bad.place), std::string::npos) << bad.name << ": " << why;
        EXPECT_NE(why.find(bad.cure), std::string::npos) << bad.name << ": " << why;
        EXPECT_EQ(why.rfind("t.txt: ", 0), 0U) << bad.name << ": " << why;
    }
}

// Any cut of a good table is refused, or gives its patches (behind END_DATA nothing counts).
TEST(MeasurementTable, RefusesEveryCut) {
    const std::string whole = cmyk({kPaper, kCyan});
    for (std::size_t length = 0; length < whole.size() - 1; ++length)
        EXPECT_NE(refusal(whole.substr(0, length)), "") << length;
    EXPECT_EQ(refusal(whole), "");
    EXPECT_EQ(refusal(whole.substr(0, whole.size() - 1)), "");
    std::string marks;  // only the first one is a byte order mark
    for (int i = 0; i < 300000; ++i)
        marks += "\xEF\xBB\xBF";
    EXPECT_NE(refusal(marks), "");
}

}  // namespace
