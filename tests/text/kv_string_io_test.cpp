#include <gtest/gtest.h>
#include <kvbase/text/kv_string.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string bytesOf(const KV_String &s) { return {s.Ptr(), s.Length()}; }

TEST(KVStringFormat, MeetsTheCLibrary) {
    const std::string longText(100, 'x');
    char expected[500];
    const char notTerminated[3] = {'a', 'b', 'c'};
    KV_String s;
#define EXPECT_AS_PRINTF(...)                                            \
    ASSERT_GT(std::snprintf(expected, sizeof expected, __VA_ARGS__), 0); \
    EXPECT_STREQ(s.Format(__VA_ARGS__).Ptr(), expected);                 \
    EXPECT_EQ(s.Length(), std::strlen(expected))
    EXPECT_AS_PRINTF("%d%%, %5.3i|%-8u|%#x|%+ld|%lld", -7, 5, 6u, 255u, -8L, 1LL << 40);
    EXPECT_AS_PRINTF("%f %.3e %G %LF %a", 1e300, 1.5, 1e-9, 2.5L, 1.0);  // longer than any estimate
    EXPECT_AS_PRINTF("%s|%.*s|%*s|%-*d|", longText.c_str(), 3, notTerminated, 5, "ab", 4, 7);
    EXPECT_AS_PRINTF("%zu %jd %td %hhd %F%s", std::size_t{1}, std::intmax_t{-2}, std::ptrdiff_t{3}, 'c', 0.5,
                     "end");
    EXPECT_AS_PRINTF("%c%c%ls%.2ls", 'a', '\t', L"wide", L"wide");
    const char *positions = "%2$s %1$d";
    EXPECT_AS_PRINTF(positions, 7, "second");
    EXPECT_AS_PRINTF("%.0f of %s", 99.6, "%s");
#undef EXPECT_AS_PRINTF
}

TEST(KVStringFormat, CapacityHoldsTheEstimate) {
    const struct {
        const char *name;
        std::uint32_t got, expected;
    } rows[] = {{"number, 32", KV_String().Format("%d", 1).Capacity(), 47},
                {"literal, flag and number, 1 + 2 + 32", KV_String().Format("a%#x", 1u).Capacity(), 47},
                {"width and precision, 60", KV_String().Format("%40.20d", 1).Capacity(), 63},
                {"15 bytes", KV_String().Format("%s%%", "01234567890123").Capacity(), 15},
                {"cut text", KV_String().Format("%.3s", "01234567890123456789").Capacity(), 15},
                {"fits", KV_String('x', 31).Format("%d", 1).Capacity(), 31},
                {"doubled", KV_String('x', 40).Format("%50d", 1).Capacity(), 95}};
    for (const auto &row : rows) {
        EXPECT_EQ(row.got, row.expected) << row.name;
    }
    KV_String s;
    for (int i = 0; i < 100; ++i) {
        s.Format("%.13E", i / 3.0);  // 19 bytes, not estimated
    }
    EXPECT_EQ(s.Capacity(), 31u);
}

TEST(KVStringFormat, ArgumentsMayLieInTheString) {
    KV_String s("0123456789abcdef");
    s.Format("<%s|%s>", s.Ptr(), s.Ptr() + 10);
    EXPECT_EQ(s, "<0123456789abcdef|abcdef>");
}

TEST(KVStringFormat, UnusualFormats) {
    // Variables, since a compiler would not let some of these pass.
    const char *empty = "";
    const char *count = "%s%n%5d";
    KV_String s("kept");
    EXPECT_EQ(s.Format(empty, 1), "kept");
    int stored = -5;
    EXPECT_EQ(s.Format(count, "ab", &stored, 7), "ab    7");
    EXPECT_EQ(stored, 2);
#if defined(__GLIBC__)
    // The C library alone knows which of the arguments such directives take; others than this one may crash.
    for (const char *odd : {"%N%s", "%Nd%s", "%hLd%s", "%zlld%s", "%I%k%s", "%5$s%3$s", "%*2$s"}) {
        char expected[500];
        ASSERT_GT(std::snprintf(expected, sizeof expected, odd, "a", 1, "c", "d", "e"), 0) << odd;
        EXPECT_EQ(s.Format(odd, "a", 1, "c", "d", "e"), expected) << odd;
    }
#endif
    EXPECT_EQ(s.Format("a%cb", 0), "a") << "the text ends at a zero";
    EXPECT_EQ(s.Length(), 1u);
    EXPECT_EQ(s.Format("%s", empty), "");
}

TEST(KVStringRead, Lines) {
    const struct {
        const char *name, *text;
        std::vector<std::string> lines;
        bool skipWhite, atEnd;  // the end after the last line
    } rows[] = {{"all line ends", "one\r\ntwo\rthree\nfour", {"one", "two", "three", "four"}, false, true},
                {"ended", "one\r\ntwo\n", {"one", "two"}, false, false},
                {"ended by CR", "one\r", {"one"}, false, false},
                {"LF CR are two", "one\n\rtwo\n", {"one", "", "two"}, false, false},
                {"white kept", " one \n", {" one "}, false, false},
                {"white and empty lines skipped", " \n\r\n\t one \n", {"one "}, true, false},
                {"white only", " \n\t", {""}, true, true},
                {"none", "", {""}, false, true}};
    for (const auto &row : rows) {
        std::istringstream stream(row.text);
        KV_String s;
        for (const std::string &line : row.lines) {
            EXPECT_FALSE(stream.eof()) << row.name;
            s.Empty();
            s.ReadLine(stream, row.skipWhite);
            EXPECT_EQ(bytesOf(s), line) << row.name;
        }
        EXPECT_EQ(stream.eof(), row.atEnd) << row.name;
    }
}

TEST(KVStringRead, AppendsToDelimiter) {
    std::istringstream stream(std::string("ab;\xFF"
                                          "cd\0ef;",
                                          10) +
                              std::string(100, 'x'));
    KV_String s(">");
    s.ReadToDelim(stream, ';').peek();
    EXPECT_EQ(s, ">ab");
    s.ReadString(stream);
    EXPECT_EQ(s,
              ">ab\xFF"
              "cd");
    s.ReadToDelim(stream, ';');
    s.ReadToDelim(stream, ';');
    EXPECT_EQ(bytesOf(s),
              ">ab\xFF"
              "cdef" +
                  std::string(100, 'x'));
    EXPECT_TRUE(stream.eof());
    EXPECT_EQ(s.Capacity(), 191u);  // 16; for 16 + 16, 48; then doubled twice

    std::istringstream throwing("0123456789abcdef");
    throwing.exceptions(std::ios_base::eofbit);
    s.Empty();
    EXPECT_THROW(s.ReadLine(throwing), std::ios_base::failure);
    EXPECT_EQ(s, "0123456789abcdef") << "terminated, though the stream threw";
    std::istream none(nullptr);
    EXPECT_TRUE(s.ReadLine(none).eof());
}

}  // namespace
