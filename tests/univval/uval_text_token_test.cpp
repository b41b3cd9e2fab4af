#include <gtest/gtest.h>
#include <kvbase/univval/kv_uval.h>
#include <kvbase/univval/kv_uval_text.h>

#include <istream>
#include <locale>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "text_streams.h"

namespace {

using Token = std::unique_ptr<KV_PsNToken>;

std::string bytes(const KV_String &text) { return {text.Ptr(), text.Size()}; }

std::string describe(const KV_PsNToken &token) {
    std::ostringstream out;
    switch (token.GetKind()) {
    case KV_PsNToken::PST_INT:
        out << "i:" << dynamic_cast<const KV_PsIntToken &>(token).GetValue();
        break;
    case KV_PsNToken::PST_FLOAT:
        out << "f:" << dynamic_cast<const KV_PsFloatToken &>(token).GetValue();
        break;
    case KV_PsNToken::PST_TYPE:
        out << "t:" << dynamic_cast<const KV_PsTypeToken &>(token).GetValue();
        break;
    case KV_PsNToken::PST_STRING:
        out << "s:" << bytes(dynamic_cast<const KV_PsStringToken &>(token).GetValue());
        break;
    case KV_PsNToken::PST_IDENTIFIER:
        out << "/:" << bytes(dynamic_cast<const KV_PsIdentifierToken &>(token).GetValue());
        break;
    default:
        out << "kind" << token.GetKind();
    }
    return out.str();
}

// All tokens up to the end of the input, "null" for what is no token.
std::string tokens(std::istream &stream, std::size_t size = 1024) {
    const std::unique_ptr<char[]> buffer(new char[size]);
    std::string all;
    while (!stream.eof()) {
        const Token token(KV_GetToken(stream, buffer.get(), size));
        if (token == nullptr && stream.eof()) break;
        all += token == nullptr ? "null|" : describe(*token) + "|";
    }
    return all;
}

template <std::size_t N>
std::string raw(const char (&literal)[N]) {
    return {literal, N - 1};
}

struct TokenCase {
    const char *name;
    std::string text, expected;
};
const TokenCase kCases[] = {
    {"nothing", "", ""},
    {"brackets", "<<>>[]", "kind3|kind4|kind5|kind6|"},
    {"delimiters that are texts", "){}", "s:)|s:{|s:}|"},
    {"lone angle brackets", "<a > >>", "null|s:a|null|kind4|"},
    {"lone angle bracket at the end", "a <", "s:a|"},
    {"white space is these four", " \t\r\n\v 1\f", "s:\v|f:1|"},
    {"words end at delimiters only", "abc/def a%b{c", "s:abc/def|s:a%b|s:{|s:c|"},
    {"comments", "%one\n1%x\r\n 2 % three", "f:1|i:2|"},
    {"names", "/a/b /(x)/", "/:a/b|/:|s:x|/:|"},
    {"first bracket ends a string", "(a(b)c)", "s:a(b|s:c|s:)|"},
    {"quoting escapes", R"((\(\)\\\q\8))", "s:()\\q8|"},
    {"octal escapes", R"((\101\18\0019\7777\377))", raw("s:A\0018\0019\3777\377|")},
    {"input ends within an escape", "(a\\", "s:a|"},
    {"escapes in words", R"(a\101 \65 /\141)", "s:aA|i:5|/:a|"},
    {"escaped white space ends a word", R"(a\ b a\nb a\040b)", "s:a|s:b|s:a|s:b|s:a|s:b|"},
    {"escaped delimiter ends a word and stays", R"(a\[b c\]d)", "s:a|kind5|s:b|s:c|kind6|s:d|"},
    {"octal delimiter ends a word and stays", R"(a\050b) \076> a\400b \476>)",
     "s:a|s:b|s:|kind4|s:a|s:b|s:|kind4|"},
    {"zero byte ends a word", raw("a\0b\0\0c"), "s:a|s:b|s:|s:c|"},
    {"zero byte in a string", raw("(a\0b)"), raw("s:a\0b|")},
    {"byte 255 ends the input", "1 (ab\377cd) 2", "i:1|s:ab|"},
    {"whole numbers", "42 -7 007 - --5 1-2 5-", "i:42|i:-7|i:7|i:0|i:0|i:1|i:5|"},
    {"saturated", "2147483648 -2147483648 -2147483649 99999999999999999999999",
     "i:2147483647|i:-2147483648|i:-2147483648|i:2147483647|"},
    {"other numbers", "1e3 .5 -.25 2. 1.5.2 12abc 0x10 1e . 5+",
     "f:1000|f:0.5|f:-0.25|f:2|f:1.5|f:12|f:0|f:0|f:0|f:5|"},
    {"no numbers", "+5 e3 inf", "s:+5|s:e3|s:inf|"},
    {"keywords",
     "satchar satuchar satshort satushort satlong satulong satfloat satdouble satstring satutfstring satptr",
     "t:0|t:1|t:2|t:3|t:4|t:5|t:6|t:7|t:8|t:9|t:10|"},
    {"no keywords", "SatLong sat satlongs (satlong) /satlong",
     "s:SatLong|s:sat|s:satlongs|s:satlong|/:satlong|"},
};

TEST(UvalTextToken, CutsTheTextIntoTokens) {
    for (const TokenCase &c : kCases) {
        std::stringstream whole(c.text);
        EXPECT_EQ(tokens(whole), c.expected) << c.name;
        EXPECT_FALSE(whole.bad()) << c.name;
        for (const std::size_t piece : {0U, 1U, 2U, 3U}) {
            if (c.expected.find("s:a|s:b|s:|kind4") != std::string::npos ||
                c.text.find("\\[") != std::string::npos) {
                continue;  // these put a character back, which such a source doesn't take
            }
            PieceBuffer buffer(c.text, piece);
            std::istream pieces(&buffer);
            EXPECT_EQ(tokens(pieces), c.expected) << c.name << ", in pieces of " << piece;
        }
    }
}

TEST(UvalTextToken, LongTokensLeaveTheCallersBufferAlone) {
    const std::string word(100000, 'x');
    for (const std::size_t size : {0U, 1U, 7U, 1024U}) {
        std::istringstream stream(std::string("/").append(word).append(" (").append(word).append(")"));
        std::string guarded(size + 1, '#');
        const Token name(KV_GetToken(stream, guarded.data(), size));
        const Token string(KV_GetToken(stream, size == 0 ? nullptr : guarded.data(), size));
        EXPECT_EQ(describe(*name), "/:" + word) << size;
        EXPECT_EQ(describe(*string), "s:" + word) << size;
        EXPECT_EQ(guarded.back(), '#') << size;
    }
}

// What the standard stream reads from the same word, in the "C" locale.
TEST(UvalTextToken, FloatsAreThoseOfTheStream) {
    std::mt19937 random(20);
    const std::string alphabet = "0123456789.eE+-x";
    for (int round = 0; round < 20000; ++round) {
        std::string word(1, "-.0123456789"[random() % 12]);
        for (auto left = random() % 24; left > 0; --left)
            word += alphabet[random() % (round % 2 == 0 ? 11 : alphabet.size())];
        if (word.find_first_not_of("-0123456789") == word.npos) word += ".5";
        std::istringstream source(word + ' '), plain(word);
        plain.imbue(std::locale::classic());
        double expected = 0;
        plain >> expected;
        const Token token(KV_GetToken(source, nullptr, 0));
        ASSERT_EQ(token->GetKind(), KV_PsNToken::PST_FLOAT) << word;
        EXPECT_EQ(dynamic_cast<KV_PsFloatToken &>(*token).GetValue(), expected) << word;
    }
}

TEST(UvalTextToken, TakesNoMoreThanTheToken) {
    std::istringstream stream("(a)b <<c]");
    for (const int position : {3, 5, 7, 8}) {  // white space that ends a word goes with it, a bracket stays
        const Token token(KV_GetToken(stream, nullptr, 0));
        EXPECT_EQ(stream.tellg(), position);
    }
}

}  // namespace
