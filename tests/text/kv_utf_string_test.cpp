#include <gtest/gtest.h>
#include <kvbase/text/kv_utf_string.h>

#include <locale>
#include <sstream>
#include <string>

#include "comma.h"

namespace {

#define EURO "\xE2\x82\xAC"
#define E_ACUTE "\xC3\xA9"

std::string bytes(const KV_Str &s) { return {s.Ptr(), s.Size()}; }

TEST(UtfString, SanitisesOnEveryWayIn) {
    const struct {
        const char *in, *expected;
    } rows[] = {{"caf\xE9", "caf#"}, {EURO "\xFF", "####"}, {EURO "a", EURO "a"}, {"\xA0", "\xA0"}, {"", ""}};
    for (const auto &row : rows) {
        const KV_String plain(row.in);
        const KV_UTFString text("<");
        KV_UTFString assigned(EURO "old"), appended("<"), owner("a" EURO "z");
        EXPECT_EQ(bytes(KV_UTFString(row.in)), row.expected);
        EXPECT_EQ(bytes(KV_UTFString(plain)), row.expected);
        EXPECT_EQ(bytes(KV_UTFString(plain(0, plain.Length()))), row.expected);
        EXPECT_EQ(bytes(assigned = row.in), row.expected);
        EXPECT_EQ(bytes(assigned = plain), row.expected);
        EXPECT_EQ(bytes((appended += row.in) += plain), std::string("<") + row.expected + row.expected);
        EXPECT_EQ(bytes(row.in + text + plain), std::string(row.expected) + "<" + row.expected);
        owner(1, 1) = row.in;
        EXPECT_EQ(bytes(owner), std::string("a") + row.expected + "z");
    }
    KV_UTFString text("old");
    EXPECT_TRUE((text = static_cast<const char *>(nullptr)).IsEmpty());
    EXPECT_EQ(bytes(KV_UTFString(KV_String("a\0\xE9", 3))), std::string("a\0\xE9", 3));
}

TEST(UtfString, RangesOfPlainStrings) {
    const KV_String good("a" EURO "z"), badTail(EURO "a\xFF");
    EXPECT_EQ(bytes(KV_UTFString(good(1, 3))), EURO);
    EXPECT_EQ(bytes(KV_UTFString(good(1, 2))), "##") << "the range ends within a rune";
    EXPECT_EQ(bytes(KV_UTFString(badTail(0, 4))), "###a") << "the owner goes on with a bad byte";
}

TEST(UtfString, CountsRunesAndComparesBytes) {
    const KV_UTFString text(E_ACUTE "a" EURO);
    EXPECT_EQ(text.Size(), 6U);
    EXPECT_EQ(text.Length(), 3U);
    EXPECT_TRUE(text == KV_UTFString(E_ACUTE "a" EURO));
    EXPECT_TRUE(KV_UTFString("z") < text && text < KV_UTFString(EURO)) << "U+007A, U+00E9, U+20AC";
    EXPECT_TRUE("z" < text && text >= E_ACUTE);
}

TEST(UtfString, FindStartsAtABytePositionAndGivesARune) {
    const KV_UTFString text(EURO "ab" E_ACUTE "ab");
    const struct {
        const char *what;
        int start, expected;
    } rows[] = {{"ab", 0, 1}, {"ab", 4, 4},    {E_ACUTE, 3, 3}, {"", 9, 6},
                {"z", 0, -1}, {"\xE9", 0, -1}, {"\x82", 0, -1}};
    for (const auto &row : rows)
        EXPECT_EQ(text.Find(row.what, row.start), row.expected) << row.what << " from " << row.start;
}

TEST(UtfString, RangesCountRunes) {
    KV_UTFString text("a" EURO E_ACUTE "bc");
    const KV_UTFSubString range = text(1, 2);
    EXPECT_EQ(bytes(KV_UTFString(range)), EURO E_ACUTE);
    EXPECT_EQ(range.Size(), 5U);
    EXPECT_EQ(range.Length(), 2U);
    EXPECT_EQ(range.Position(), 1U);
    EXPECT_EQ(text(4, 99).Size(), 1U);
    EXPECT_EQ(text(99, 1).Size(), 0U);
    EXPECT_EQ(bytes("<" + range), "<" EURO E_ACUTE);
    text(1, 1) = text(2, 3);  // the source lies behind the range and moves with the tail
    EXPECT_EQ(bytes(text), "a" E_ACUTE "bc" E_ACUTE "bc");
    text(0, 2) = text.Ptr() + 3;
    EXPECT_EQ(bytes(text), "bc" E_ACUTE "bcbc" E_ACUTE "bc");
}

TEST(UtfString, ArgumentsMayLieInTheOwnBuffer) {
    KV_UTFString text("0123456789" EURO EURO);  // 16 bytes: the next append needs a new buffer
    text += text.Ptr();
    EXPECT_EQ(bytes(text), "0123456789" EURO EURO "0123456789" EURO EURO);
    text = text.Ptr() + 26;
    EXPECT_EQ(bytes(text), EURO EURO);
    text += text(1, 1);
    text = text(1, 2);
    EXPECT_EQ(bytes(text), EURO EURO);
    text = text.Ptr() + 1;  // within a rune; bytes up to 0xA0 pass, 0xAC doesn't
    EXPECT_EQ(bytes(text), "#####");
}

TEST(UtfString, ReadsAndSanitisesTheWholeString) {
    std::istringstream in("  one\r\n\xE9;two;" EURO "\n");
    KV_UTFString text;
    text.ReadLine(in, true);
    EXPECT_EQ(bytes(text), "one\r");
    text = EURO;
    text.ReadToDelim(in, ';');
    EXPECT_EQ(bytes(text), "####");
    text.ReadToDelim(in, ';');
    EXPECT_EQ(bytes(text), "####two");
    EXPECT_FALSE(text.ReadString(in).good());
    EXPECT_EQ(bytes(text), "####two" EURO "\n");
    std::istringstream throwing("caf\xE9");
    throwing.exceptions(std::ios_base::eofbit);
    text = "";
    EXPECT_THROW(text.ReadLine(throwing), std::ios_base::failure);
    EXPECT_EQ(bytes(text), "caf#");
}

TEST(UtfString, PrintsRunesInBracketsAndKeepsTheFlags) {
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new Comma));  // groups of three digits
    out << std::dec << std::showbase << std::uppercase;
    out << KV_UTFString("caf" E_ACUTE) << 26 << KV_UTFString(EURO "\x9F\xA0");
    EXPECT_EQ(out.str(), "caf[e9]26[20ac]\x9F[80]");
}

}  // namespace
