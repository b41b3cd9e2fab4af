#include <gtest/gtest.h>

#include <clocale>

#include "platform/platform.h"
#include "system.h"

using namespace std::string_literals;
namespace platform = kv::platform;

namespace {

struct CodePageCase {
    const char *name;
    int codePage;
    std::string text;
    KV_WString units;
};

// Values of the published mapping tables; ill-formed UTF-8 as in Unicode 15.0, tables 3-8 to 3-11.
const CodePageCase kToUnits[] = {
    {"1252 euro and e acute", 1252, "\x80\xE9", KV_W("\u20AC\u00E9")},
    {"1252 zero inside", 1252, "a\0b"s, KV_W("a\0b"s)},
    {"1252 longer than a block", 1252, std::string(5000, '\x80'), KV_WString(5000, KV_W('\u20AC'))},
    {"Latin-1", 28591, "\x80\xE9", KV_W("\u0080\u00E9")},
    {"KOI8-R", 20866, "\xC1", KV_W("\u0430")},
    {"932 Nihon, backslash as trail byte, half-width kana", 932, "\x93\xFA\x96\x7B\x95\x5C\xB1",
     KV_W("\u65E5\u672C\u8868\uFF71")},
    {"932 cut lead byte", 932, "a\x93", KV_W("a\uFFFD")},
    {"932 byte that is none, between letters", 932, "a\x81 z", KV_W("a\uFFFD z")},
    {"UTF-8 pair", 65001, "\xF0\x9F\x98\x80", KV_W("\U0001F600")},
    {"UTF-8 ends of the ranges", 65001,
     "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
     KV_W("\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF")},
    {"UTF-8 overlong", 65001, "\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41",
     KV_W("\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA")},
    {"UTF-8 surrogates", 65001, "\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41",
     KV_W("\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA")},
    {"UTF-8 beyond the last", 65001, "\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42",
     KV_W("\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB")},
    {"UTF-8 cut sequences", 65001, "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", KV_W("\uFFFD\uFFFD\uFFFD\uFFFDA")},
    {"UTF-8 cut by the end", 65001, "a\xF0\x9F\x98", KV_W("a\uFFFD")},
};

// What the systems' own tables and defaults make different.
const CodePageCase kOfTheSystem[] = {
#if defined(_WIN32)
    {"1252 hole, a control character", 1252, "a\x81z", KV_W("a\u0081z")},
    {"UTF-7, with a shift state", 65000, "a+ZeU-", KV_W("a\u65E5")},
    {"default", 0, "\xE9", KV_W("\u00E9")},
#else
    {"1252 hole", 1252, "a\x81z", KV_W("a\uFFFDz")},
    {"1258 letter that waits for its accent, then a hole", 1258, "a\x8Dz", KV_W("a\uFFFDz")},
    {"default of the C locale", 0, "\xC3\xA9", KV_W("\u00E9")},
#endif
};

const CodePageCase kFromUnits[] = {
    {"1252 no form", 1252, "a?z", KV_W("a\u65E5z")},
    {"1252 pair, one for each unit", 1252, "a??", KV_W("a\U0001F600")},
    {"1252 only holes, longer than a block", 1252, std::string(3000, '?'), KV_WString(3000, KV_W('\u65E5'))},
    {"932 no form", 932, "\x93\xFA?", KV_W("\u65E5\u00FC")},
    {"EBCDIC has another question mark", 37, "\x81\x6F", KV_W("a\u65E5")},
    {"UTF-8 low before high", 65001, "\xEF\xBF\xBD\xEF\xBF\xBD", KV_W("\xDE00\xD83D")},
};

void expectBothWays(const CodePageCase &c) {
    KV_WString units = KV_W("old");
    const platform::Conversion there = platform::toUnits(c.codePage, c.text, units);
    EXPECT_EQ(there.error, 0) << c.name;
    EXPECT_EQ(units, c.units) << c.name;
    EXPECT_EQ(there.replaced, c.units.find(KV_W('\uFFFD')) != KV_WString::npos) << c.name;
    if (there.replaced) return;
    std::string text = "old";
    const platform::Conversion back = platform::fromUnits(c.codePage, c.units, text);
    EXPECT_EQ(text, c.text) << c.name;
    EXPECT_FALSE(back.error != 0 || back.replaced) << c.name;
}

TEST(PlatformText, ToUnitsAndBack) {
    for (const CodePageCase &c : kToUnits)
        expectBothWays(c);
    for (const CodePageCase &c : kOfTheSystem)
        expectBothWays(c);
}

TEST(PlatformText, FourBytesOfGb18030) {
    if (onWine()) GTEST_SKIP() << "Wine lacks code page 54936";
    expectBothWays({"beyond the first plane", 54936, "\x94\x39\xDA\x33", KV_W("\U0001F4A9")});
    expectBothWays({"a byte that is none behind it", 54936, "\x94\x39\xDA\x33\xFF\xD6\xD0z",
                    KV_W("\U0001F4A9\uFFFD\u4E2Dz")});
}

TEST(PlatformText, FromUnitsReplaces) {
    for (const CodePageCase &c : kFromUnits) {
        std::string text = "old";
        const platform::Conversion outcome = platform::fromUnits(c.codePage, c.units, text);
        EXPECT_EQ(outcome.error, 0) << c.name;
        EXPECT_EQ(text, c.text) << c.name;
        EXPECT_TRUE(outcome.replaced) << c.name;
    }
}

TEST(PlatformText, UnknownCodePageFails) {
    for (const int codePage : {-1, 12, 28607, 99999}) {
        KV_WString units = KV_W("old");
        std::string text = "old";
        EXPECT_NE(platform::toUnits(codePage, "a", units).error, 0) << codePage;
        EXPECT_NE(platform::fromUnits(codePage, KV_W("a"), text).error, 0) << codePage;
        EXPECT_TRUE(units.empty() && text.empty()) << codePage;
    }
}

TEST(PlatformText, LocaleNameFollowsSetlocale) {
    EXPECT_EQ(platform::localeName(), "C");
    const char *name = kOnWindows ? "German_Germany.1252" : "C.UTF-8";
    ASSERT_NE(std::setlocale(LC_CTYPE, name), nullptr);
    EXPECT_EQ(platform::localeName(), name);
    std::setlocale(LC_CTYPE, "C");
}

}  // namespace
