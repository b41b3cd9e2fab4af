// The commands of kvtool for checksums and URLs, run as a user does.
#include "run_tool.h"

namespace {

class KvToolServices : public ToolTest {};

TEST_F(KvToolServices, PrintsChecksums) {
    std::ofstream(file("abc.txt"), std::ios::binary) << "abc";
    std::ofstream(file("zero.bin"), std::ios::binary) << '\0';
    const std::string abc = "900150983CD24FB0D6963F7D28E17F72  abc.txt\n";    // RFC 1321, A.5
    const std::string zero = "93B885ADFE0DA089CDF634904FD59F71  zero.bin\n";  // by md5sum
    const std::string both = abc + zero;
    const Row rows[] = {
        {"checksum abc.txt", 0, abc.c_str(), ""},
        {"checksum abc.txt none.txt . zero.bin", 1, both.c_str(),
         "kvtool: none.txt: doesn't exist\nkvtool: .: is a folder"},
        {"checksum", 2, "", "FILE"},
    };
    expectOutcomes(rows);
}

TEST_F(KvToolServices, TurnsPathsIntoUrlsAndBack) {
    const std::string back = fs::path("a/b c.icc\n").make_preferred().string();
    const Row rows[] = {
        {"url a/b \"c d.icc\"", 0, "file:a/b\nfile:c%20d.icc\n", ""},
        {"url --back file:a/b%20c.icc", 0, back.c_str(), ""},
        {"url --back file:", 1, "", "file:: is no URL of a file"},
        {"url --back a/b", 1, "", "a/b: is no URL of a file"},
        {"url a%20b", 1, "", "a%20b: has no URL: it would come back as a b"},
        {"url \"\"", 1, "", "an empty path"},
        {"url", 2, "", "PATH"},
    };
    expectOutcomes(rows);
}

TEST_F(KvToolServices, RefusesWhatTheLibraryCannotHold) {
    std::ofstream(file("huge.bin")).close();
    fs::resize_file(file("huge.bin"), std::uintmax_t{1} << 32);  // all of it a hole, or never written
    const Row rows[] = {
        {"checksum huge.bin", 1, "", "huge.bin: is 4 GiB or larger"},
#if !defined(_WIN32)  // where it is a separator of the system's
        {"url 'a\\b'", 1, "", "would come back as a/b"},
#endif
    };
    expectOutcomes(rows);
}

}  // namespace
