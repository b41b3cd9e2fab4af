// The commands of kvtool for checksums and URLs, run as a user does.
#include <gtest/gtest.h>

#include "temp_folder.h"
#include "tools/run_tool.h"

namespace {

struct Row {
    const char *arguments;
    int exitCode;
    std::string out;  // the whole
    const char *err;  // a part
};

void expectRows(const TempFolder &folder, std::initializer_list<Row> rows) {
    for (const Row &row : rows) {
        const ToolOutcome outcome = runTool(folder / "", row.arguments);
        EXPECT_EQ(outcome.exitCode, row.exitCode) << row.arguments;
        EXPECT_EQ(outcome.out, row.out) << row.arguments;
        EXPECT_NE(outcome.err.find(row.err), std::string::npos) << row.arguments << '\n' << outcome.err;
        EXPECT_EQ(outcome.err.empty(), row.exitCode == 0) << row.arguments << '\n' << outcome.err;
    }
}

TEST(KvToolServices, PrintsChecksums) {
    const TempFolder folder;
    std::ofstream(folder / "abc.txt", std::ios::binary) << "abc";
    std::ofstream(folder / "zero.bin", std::ios::binary) << std::string(1, '\0');
    const std::string abc = "900150983CD24FB0D6963F7D28E17F72  abc.txt\n";    // RFC 1321, A.5
    const std::string zero = "93B885ADFE0DA089CDF634904FD59F71  zero.bin\n";  // by md5sum
    expectRows(folder, {
                           {"checksum abc.txt", 0, abc, ""},
                           {"checksum abc.txt none.txt . zero.bin", 1, abc + zero,
                            "kvtool: none.txt: doesn't exist\nkvtool: .: is a folder"},
                           {"checksum", 2, "", "FILE"},
                       });
}

TEST(KvToolServices, TurnsPathsIntoUrlsAndBack) {
    const std::string separator(1, static_cast<char>(std::filesystem::path::preferred_separator));
    expectRows(TempFolder(), {
                                 {"url a/b \"c d.icc\"", 0, "file:a/b\nfile:c%20d.icc\n", ""},
                                 {"url --back file:a/b%20c.icc", 0, "a" + separator + "b c.icc\n", ""},
                                 {"url --back file:", 1, "", "file:: is no URL of a file"},
                                 {"url --back a/b", 1, "", "a/b: is no URL of a file"},
                                 {"url a%20b", 1, "", "a%20b: has no URL: it would come back as a b"},
                                 {"url \"\"", 1, "", "an empty path"},
                                 {"url", 2, "", "PATH"},
                             });
}

#if !defined(_WIN32)
// A file with a hole, and a name that holds what is a separator to the library: not on every system.
TEST(KvToolServices, RefusesWhatTheLibraryCannotHold) {
    const TempFolder folder;
    std::ofstream(folder / "huge.bin").close();
    std::filesystem::resize_file(folder / "huge.bin", std::uintmax_t{1} << 32);
    expectRows(folder, {
                           {"checksum huge.bin", 1, "", "huge.bin: is 4 GiB or larger"},
                           {"url 'a\\b'", 1, "", "would come back as a/b"},
                       });
}
#endif

}  // namespace
