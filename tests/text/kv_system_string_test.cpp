#include <gtest/gtest.h>
#include <kvbase/text/kv_system_string.h>
#include <kvbase/text/std_string_utils.h>
#include <kvbase/text/unicode_utils.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "adt/text/code_page.h"
#include "runtime/trace_capture.h"

namespace {

using Units = std::vector<unsigned short>;
using namespace std::string_literals;

#define EURO "\xE2\x82\xAC"

class CodePage : public KV_TextEncodingConverter {
public:
    explicit CodePage(int number) { mCodePage = number; }
};

// Collects the error lines of the library's tracer.
class SystemText : public testing::Test {
protected:
    ~SystemText() override { KV_SystemString::mSystemTEC = KV_TextEncodingConverter(); }
    std::string TakeErrors() {
        std::string lines = m_trace.Take();
        const std::string beginning = "*** ERROR *** : module KvBaseTrac : ERROR : ";
        for (std::size_t at; (at = lines.find(beginning)) != std::string::npos;)
            lines.erase(at, beginning.size());
        return lines;
    }

private:
    TraceCapture m_trace{0x01};
};

TEST_F(SystemText, ConvertsThroughACodePage) {
    const struct {
        const char *name;
        int codePage;
        std::string utf;
        std::int32_t size;
        int result;
        std::string text, errors;
    } rows[] = {
        {"euro sign in 1252", 1252, "a" EURO, 3, 0, "a\x80", ""},
        {"no form in 1252", 1252, "\xCE\xA9z", 3, -1, "?z",
         "WideCharToMultiByte() failure : fallback was used\n"},
        {"utf-8", 65001, "a" EURO, 5, 0, "a" EURO, ""},
        {"too small", 1252, "abc", 3, -1, "ab", "WideCharToMultiByte() failure : 7\n"},
        {"bad bytes", 65001, "a\xFF", 9, -1, "a?", "UTFtoUnicode failure : -2\n"},
        {"not initialised", -1, "abc", 9, -1, "", "mCodePage < 0\n"},
        {"not initialised, empty", -1, "", 1, 0, "", ""},
    };
    for (const auto &row : rows) {
        std::vector<char> out(static_cast<std::size_t>(row.size), '~');
        EXPECT_EQ(CodePage(row.codePage).Utf2Text(row.utf.c_str(), out.data(), row.size), row.result)
            << row.name;
        EXPECT_NE(std::find(out.begin(), out.end(), 0), out.end()) << row.name;
        EXPECT_STREQ(out.data(), row.text.c_str()) << row.name;
        EXPECT_EQ(TakeErrors(), row.errors) << row.name;
    }
    char utf[9];
    EXPECT_EQ(CodePage(1252).Text2Utf("\x80z", utf, 9), 0);
    EXPECT_STREQ(utf, EURO "z");
    EXPECT_EQ(CodePage(1252).Text2Utf("abc", utf, 3), -1);
    EXPECT_STREQ(utf, "a");
    EXPECT_EQ(TakeErrors(), "UnicodeTuUTF failure : -1\n");
    EXPECT_EQ(CodePage(1252).Text2Utf("\x80", utf, 3), -1) << "the terminator has no room";
    EXPECT_EQ(std::strlen(utf), 2U);
    EXPECT_EQ(TakeErrors(), "UnicodeTuUTF failure : -1\n");
    const unsigned short euro[] = {0x20AC, 0};
    std::int32_t written = -1;
    EXPECT_EQ(KV_TextEncodingConverter::Ucs2Utf(euro, utf, 3, &written), 0) << "the buffer conversion's";
    EXPECT_EQ(written, 3);
    EXPECT_STREQ(utf, "\xE2\x82");
    EXPECT_EQ(CodePage(-1).Text2Utf("abc", utf, 9), -1);
    EXPECT_STREQ(utf, "");
    EXPECT_EQ(TakeErrors(), "mCodePage < 0\n");
}

TEST_F(SystemText, UnitsCountTheirTerminator) {
    Units units(4, 0xFFFF);
    std::int32_t written = -1;
    EXPECT_EQ(CodePage(1252).Text2Ucs("a\x80", units.data(), 4, &written), 0);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(units, (Units{'a', 0x20AC, 0, 0xFFFF}));
    char text[] = "~~~~";
    EXPECT_EQ(CodePage(1252).Ucs2Text(units.data(), text, 4, &written), 0);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(std::string(text, 4), "a\x80\0~"s);
    EXPECT_EQ(CodePage(1252).Text2Ucs("abc", units.data(), 3, &written), -1);
    EXPECT_EQ(units, (Units{'a', 'b', 0, 0xFFFF}));
    EXPECT_EQ(TakeErrors(), "TECConvertText() failure : 7\n");
    EXPECT_EQ(CodePage(99999).Text2Ucs("abc", units.data(), 3, nullptr), -1);
    EXPECT_EQ(units[0], 0);
    EXPECT_EQ(TakeErrors().find("TECConvertText() failure : "), 0U);
    EXPECT_EQ(KV_TextEncodingConverter::Utf2Ucs("ab", units.data(), 2, &written), -1);
    EXPECT_EQ(units[1], 0);
}

TEST_F(SystemText, SystemStringKeepsAndDropsItsUtfForm) {
    KV_SystemString text("abc", false);
    EXPECT_EQ(text.Set("abc", true), -1);
    EXPECT_EQ(TakeErrors(), "mCodePage < 0\n");
    EXPECT_TRUE(text.GetSystemString().IsEmpty());

    KV_SystemString early("x\x80", false);
    const KV_UTFString *const failed = &early.GetUtfString();
    EXPECT_TRUE(failed->IsEmpty());
    KV_SystemString::mSystemTEC = CodePage(1252);
    EXPECT_EQ(&early.GetUtfString(), failed) << "tries again, for the same object";
    EXPECT_STREQ(failed->Ptr(), "x" EURO);
    EXPECT_EQ(text.Set(KV_UTFString("x" EURO)), 0);
    EXPECT_STREQ(text.GetSystemString(), "x\x80");
    const KV_UTFString *form = &text.GetUtfString();
    EXPECT_STREQ(form->Ptr(), "x" EURO);
    EXPECT_EQ(form, &text.GetUtfString());
    KV_SystemString copy(text);
    EXPECT_NE(&copy.GetUtfString(), form);
    EXPECT_EQ(copy.Set(KV_UTFString("\xCE\xA9")), -1);
    EXPECT_STREQ(copy.GetSystemString(), "?");

    EXPECT_EQ(text.Set(text.GetUtfString()), 0) << "an argument that the change drops";
    EXPECT_STREQ(text.GetUtfString(), "x" EURO);
    EXPECT_EQ(text.Set(text.GetUtfString().Ptr() + 1, true), 0);
    EXPECT_STREQ(text.GetSystemString(), "\x80");
    EXPECT_EQ(text.Set(copy), 0);
    EXPECT_STREQ(text.GetUtfString(), "?");
    std::ostringstream out;
    text.PrintOn(out);
    EXPECT_EQ(out.str(), "?");
    EXPECT_STREQ(KV_SystemString("\x80\x80\x80", false).GetUtfString(), EURO EURO EURO) << "room for all";
    KV_SystemString::mSystemTEC = CodePage(932);
    const KV_UTFString nihon("\xE6\x97\xA5\xE6\x9C\xAC\xE8\xA1\xA8");
    EXPECT_EQ(text.Set(nihon), 0);
    EXPECT_STREQ(text.GetSystemString(), "\x93\xFA\x96\x7B\x95\\") << "the last byte is no separator";
    EXPECT_STREQ(KV_SystemString(text).GetUtfString(), nihon);
    KV_SystemString::mSystemTEC = CodePage(65001);
    EXPECT_EQ(text.Set(KV_UTFString(EURO EURO)), 0);
    EXPECT_STREQ(text.GetSystemString(), EURO EURO);
}

TEST_F(SystemText, InitializeTakesTheProcessesEncoding) {
    const struct {
        const char *localeName;
        int codePage;
    } rows[] = {{"x.1252", 1252},
                {"Chinese (Traditional)_Hong Kong S.A.R..950", 950},
                {"C", 0},
                {"C.UTF-8", 0},
                {"de.ISO8859-1", 0},
                {"x.", 0},
                {"", 0}};
    for (const auto &row : rows)
        EXPECT_EQ(kv::detail::codePageOf(row.localeName), row.codePage) << row.localeName;
    EXPECT_EQ(KV_SystemString::Initialize("German_Germany.1252"), 0);
    EXPECT_EQ(KV_SystemString().Set("abc", true), -1) << "a name changes nothing";
    EXPECT_EQ(KV_SystemString::Initialize(nullptr), 0);
    KV_SystemString text("abc", true);
    EXPECT_STREQ(text.GetSystemString(), "abc");
    EXPECT_STREQ(text.GetUtfString(), "abc");
}

TEST(UnicodeText, Utf8AndWideText) {
    const struct {
        const char *name;
        std::string utf8;
        KV_WString wide;
        bool bothWays;
    } rows[] = {
        {"runes of 1 to 3 bytes", "a\xC3\xA9" EURO, {u'a', 0xE9, 0x20AC}, true},
        {"pair of surrogates", "\xF0\x9F\x8E\xA8", {0xD83C, 0xDFA8}, true},
        {"empty", "", {}, true},
        {"bad byte", "a\xFFz", {u'a', 0xFFFD, u'z'}, false},
        {"behind a zero", "a\0b"s, {u'a'}, false},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(UnicodeUtils::CreateWideStringFromStdString(row.utf8), row.wide) << row.name;
        if (row.bothWays) {
            EXPECT_EQ(UnicodeUtils::CreateStdStringFromWideString(row.wide), row.utf8) << row.name;
        }
    }
    EXPECT_EQ(UnicodeUtils::CreateStdStringFromWideString({u'a', 0xD800, u'z'}), "a\xEF\xBF\xBDz");
}

TEST(UnicodeText, BigEndianBytes) {
    std::uint32_t count = 0;
    unsigned char *data = nullptr;
    UnicodeUtils::TranslateWStringTo16BitUnicodeBE({0x20AC, 0, u'z'}, &count, &data);
    const std::unique_ptr<unsigned char[]> owner(data);
    EXPECT_EQ(std::vector<unsigned char>(data, data + count),
              (std::vector<unsigned char>{0x20, 0xAC, 0, 0, 0, 'z'}));
    KV_WString back = KV_W("old");
    UnicodeUtils::Translate16BitUnicodeBEToWString(1, data, back);
    EXPECT_EQ(back, KV_W("old"));
    UnicodeUtils::Translate16BitUnicodeBEToWString(3, data, back);
    EXPECT_EQ(back, KV_WString(1, 0x20AC));

    const std::unique_ptr<unsigned short[]> units(TranslateKVStringTo16BitUnicodeBE(EURO "\xFFz"));
    EXPECT_EQ(std::memcmp(units.get(), "\x20\xAC\0?\0z\0\0", 8), 0);
    EXPECT_EQ(StdStringUtils::ToLowerCase("LAB 1\xC9"), "lab 1\xC9");
    EXPECT_EQ(StdStringUtils::ToUpperCase("cmyk_\xE9"), "CMYK_\xE9");
}

}  // namespace
