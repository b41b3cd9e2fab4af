#include <gtest/gtest.h>
#include <kvbase/text/kv_utf.h>

#include <string>
#include <vector>

namespace {

TEST(Utf, DecodesSingleRunes) {
    const struct {
        const char *name, *bytes;
        int rune, length;
    } rows[] = {
        {"terminator", "", 0, 1},
        {"first of two bytes, the error rune", "\xC2\x80", 0x80, 2},
        {"euro sign", "\xE2\x82\xAC", 0x20AC, 3},
        {"overlong zero", "\xC0\x80", 0x80, 1},
        {"overlong in two bytes", "\xC1\xBF", 0x80, 1},
        {"overlong in three bytes", "\xE0\x9F\xBF", 0x80, 1},
        {"four bytes", "\xF0\x90\x80\x80", 0x80, 1},
        {"four bytes that begin as a rune", "\xF0\xA0\x80\x80", 0x80, 1},
        {"continuation first", "\x80\x80", 0x80, 1},
        {"lead before the terminator", "\xE9", 0x80, 1},
        {"cut after two of three", "\xE2\x82", 0x80, 1},
        {"third byte is none", "\xE2\x82z", 0x80, 1},
    };
    for (const auto &row : rows) {
        unsigned short rune = 0;
        EXPECT_EQ(chartorune(&rune, row.bytes), row.length) << row.name;
        EXPECT_EQ(rune, row.rune) << row.name;
        EXPECT_EQ(isutf(row.bytes), row.rune == 0x80 ? 0 : row.length) << row.name;
    }
}

TEST(Utf, EveryRuneComesBack) {
    for (unsigned int value = 0; value < 0x10000; ++value) {
        const auto rune = static_cast<unsigned short>(value);
        char bytes[4] = {};
        unsigned short back = 0;
        const int length = runetochar(bytes, &rune);
        ASSERT_EQ(length, value < 0x80 ? 1 : value < 0x800 ? 2 : 3);
        ASSERT_EQ(runelen(rune), length);
        ASSERT_EQ(chartorune(&back, bytes), length);
        ASSERT_EQ(back, rune);
        for (int n = 0; n <= 3; ++n)
            ASSERT_EQ(fullrune(bytes, n), n >= length) << value;
    }
}

TEST(Utf, ThresholdsOfStrayBytes) {
    const struct {
        const char *text;
        int good;
        unsigned int runes;
    } rows[] = {{"\x80", 1, 1},     {"\x9F\x9F", 1, 2},      {"\xA0", 1, 1},     {"\xA1", 0, 1},
                {"\xC2\x80", 0, 1}, {"a\xE2\x82\xAC", 1, 2}, {"\xE2\x82", 0, 2}, {"\xF0\x90\x80\x80", 0, 4}};
    for (const auto &row : rows) {
        EXPECT_EQ(isutfstr(row.text), row.good) << testing::PrintToString(row.text);
        EXPECT_EQ(utflen(row.text), row.runes) << testing::PrintToString(row.text);
    }
    EXPECT_EQ(isutfstr(nullptr), 1);
}

TEST(Utf, PositionsAndSearches) {
    const char *const text = "a\xE2\x82\xAC\xC3\xA9 a\x85";  // runes at 0, 1, 4, 6, 7, 8; 9 bytes
    const int starts[] = {0, 1, 4, 6, 7, 8, 9};
    for (unsigned int n = 0; n < 7; ++n) {
        EXPECT_EQ(utfbytepos(text, n), starts[n]) << n;
        EXPECT_EQ(utfnsize(text, n), static_cast<unsigned int>(starts[n])) << n;
    }
    EXPECT_EQ(utfnsize(text, 99), 9U);
    const int runes[] = {0, 1, -1, -1, 2, -1, 3, 4, 5, 6, -1, -1};
    for (unsigned int byte = 0; byte < 12; ++byte)
        EXPECT_EQ(utfrunepos(text, byte), runes[byte]) << byte;
    const auto place = [text](const char *found) { return found == nullptr ? -1 : found - text; };
    const struct {
        std::int32_t rune;
        int first, last;  // -1: not found
    } rows[] = {{'a', 0, 7}, {0x20AC, 1, 1}, {0xE9, 4, 4}, {' ', 6, 6},
                {0, 9, 9},   {0x85, 8, 8},   {'z', -1, -1}};
    for (const auto &row : rows) {
        EXPECT_EQ(place(utfrune(text, row.rune)), row.first) << row.rune;
        EXPECT_EQ(place(utfrrune(text, row.rune)), row.last) << row.rune;
    }
    EXPECT_EQ(place(utfutf(text, "\xC3\xA9")), 4);
    EXPECT_EQ(place(utfutf(text, "\xC3\xA8")), -1);
}

// One conversion into a target of a given size, in which the element behind the target must stay as it was.
template <class To, class From>
struct ConversionRow {
    const char *name;
    int (*convert)(To *, int, const From *, int, int *);
    std::basic_string<From> source;
    int sourceLength, size;
    int result, written;
    std::vector<To> stored;  // the beginning of the target
};

template <class To, class From>
void check(const std::vector<ConversionRow<To, From>> &rows) {
    for (const auto &row : rows) {
        std::vector<To> target(static_cast<std::size_t>(row.size) + 1, To{'~'});
        int written = -1;
        EXPECT_EQ(row.convert(target.data(), row.size, row.source.c_str(), row.sourceLength, &written),
                  row.result)
            << row.name;
        EXPECT_EQ(written, row.written) << row.name;
        EXPECT_EQ(target.back(), To{'~'}) << row.name;
        target.resize(row.stored.size());
        EXPECT_EQ(target, row.stored) << row.name;
    }
}

TEST(Utf, BufferConversions) {
    check<char, char>({
        {"latin1, empty, size 2", UTFfromLatin1, "", -1, 2, -1, 0, {}},
        {"latin1, length 0, size 2", UTFfromLatin1, "", 0, 2, -1, 0, {}},
        {"latin1", UTFfromLatin1, "c\xE9", -1, 6, 0, 3, {'c', '\xC3', '\xA9', 0}},
        {"latin1, no room", UTFfromLatin1, "c\xE9z", -1, 5, -1, 3, {'c', '\xC3', '\xA9'}},
        {"latin1, by length", UTFfromLatin1, "abc", 2, 4, 0, 2, {'a', 'b', 0}},
        {"to latin1", UTFtoLatin1, "c\xC3\xA9", -1, 3, 0, 3, {'c', '\xE9', 0}},
        {"to latin1, no room", UTFtoLatin1, "c\xC3\xA9", -1, 2, -1, 2, {'c', '\xE9'}},
        {"to latin1, no room for the terminator needed", UTFtoLatin1, "c\xC3\xA9", 3, 2, 0, 2, {'c', '\xE9'}},
        {"to latin1, euro sign", UTFtoLatin1, "\xE2\x82\xAC.", -1, 3, -2, 3, {'?', '.', 0}},
        {"to latin1, bad bytes", UTFtoLatin1, "\xFF\xC2\x80", -1, 3, -2, 3, {'?', '?', 0}},
        {"to latin1, length cuts a rune", UTFtoLatin1, "a\xC3\xA9", 2, 3, -2, 2, {'a', '?', 0}},
    });
    check<char, unsigned short>({
        {"units", UTFfromUniCode, {0x20AC, 'z'}, -1, 6, 0, 4, {'\xE2', '\x82', '\xAC', 'z', 0}},
        {"units, terminator doesn't fit", UTFfromUniCode, {0x20AC}, -1, 3, 0, 3, {'\xE2', '\x82', '\xAC'}},
        {"units, no room", UTFfromUniCode, {'a', 'b'}, -1, 3, -1, 1, {'a'}},
        {"units, 0 before the length", UTFfromUniCode, {'a', 0, 'b'}, 3, 4, 0, 1, {'a', 0}},
        {"units, by length", UTFfromUniCode, {0xE9, 'b'}, 1, 4, 0, 2, {'\xC3', '\xA9', 0, '~'}},
        {"units to latin1", UnicodetoLatin1, {0xE9, 0x100, 0x80}, -1, 4, -2, 4, {'\xE9', '?', '?', 0}},
        {"units to latin1, no room", UnicodetoLatin1, {0xE9, 'a'}, -1, 2, -1, 2, {'\xE9', 'a'}},
        {"units to latin1, by length", UnicodetoLatin1, {0xE9, 'b'}, 1, 3, 0, 1, {'\xE9', 0, '~'}},
    });
    check<unsigned short, char>({
        {"to units", UTFtoUnicode, "\xE2\x82\xAC\xC2\x80", -1, 3, -2, 3, {0x20AC, '?', 0}},
        {"to units, no room", UTFtoUnicode, "ab", -1, 2, -1, 2, {'a', 'b'}},
        {"to units, by length", UTFtoUnicode, "\xC3\xA9z", 2, 3, 0, 1, {0xE9, 0, '~'}},
        {"latin1 to units, by length", UnicodefromLatin1, "\xE9z", 1, 3, 0, 1, {0xE9, 0, '~'}},
        {"latin1 to units", UnicodefromLatin1, "\xE9\x80", -1, 3, 0, 2, {0xE9, 0x80, 0}},
        {"latin1 to units, no room", UnicodefromLatin1, "ab", -1, 2, -1, 2, {'a', 'b'}},
    });
    char target[] = "~";
    int written = -1;
    EXPECT_EQ(UTFtoLatin1(target, 1, nullptr, -1, &written), 0);
    EXPECT_EQ(target[0], 0);
    EXPECT_EQ(written, 0);
    target[0] = '~';
    EXPECT_EQ(UTFtoLatin1(target, 0, "a", -1, nullptr), 0);
    EXPECT_EQ(target[0], 0);
    EXPECT_EQ(UTFtoLatin1(nullptr, 1, "a", -1, &(written = -1)), -1);
    EXPECT_EQ(written, 0);
}

}  // namespace
