#include <gtest/gtest.h>
#include <kvbase/runtime/kv_tracer.h>
#include <kvbase/text/kv_string.h>

#include <iomanip>
#include <random>
#include <sstream>
#include <string>
#include <utility>

namespace {

std::string bytesOf(const KV_Str &s) { return {s.Ptr(), s.Size()}; }

const char *const kNoText = nullptr;

// Makes the helpers of the derived classes reachable.
class Helpers : public KV_Str {
public:
    using KV_Str::allocCopy;
    using KV_Str::concatCopy;
    using KV_Str::operator+=;
};

TEST(KVString, CapacitiesFollowTheRuleOf16) {
    EXPECT_EQ(KV_String().Capacity(), 4294967295u);
    const struct {
        const char *name;
        std::uint32_t length, capacity;
    } rows[] = {{"empty", 0, 15}, {"one below", 15, 15}, {"full", 16, 31}, {"one above", 17, 31}};
    for (const auto &row : rows) {
        const KV_String s('x', row.length);
        EXPECT_EQ(s.Capacity(), row.capacity) << row.name;
        EXPECT_EQ(s.Ptr()[row.length], 0) << row.name;
        EXPECT_EQ(KV_Str(row.length).Capacity(), row.capacity) << row.name;
        KV_String roomy(s);
        roomy.ReSize(100);
        EXPECT_EQ(KV_String(roomy).Capacity(), row.capacity) << row.name;
        EXPECT_EQ(roomy, s) << row.name;
    }
}

TEST(KVString, GrowthDoublesAndOnlyEmptyGivesUp) {
    KV_String s('x', 40);  // 48
    EXPECT_EQ(s.ReSize(1), 95u);
    s += KV_String('y', 56);  // just fits
    EXPECT_EQ(s.Capacity(), 95u);
    s += 'z';
    EXPECT_EQ(s.Capacity(), 191u);
    EXPECT_EQ(bytesOf(s), std::string(40, 'x') + std::string(56, 'y') + 'z');
    s = "ab";
    s = KV_String("c");  // a temporary with a smaller buffer
    EXPECT_EQ(s, "c");
    EXPECT_EQ(s.Capacity(), 191u);
    s = KV_String('x', 192);  // beyond: exactly by the rule, or the temporary's own
    EXPECT_EQ(s.Capacity(), 207u);
    s.Empty();
    EXPECT_EQ(s.Capacity(), 4294967295u);
    s = KV_String();
    s = "";
    EXPECT_EQ(s.Capacity(), 4294967295u) << "empty texts need no buffer";
}

TEST(KVString, MovesTakeTheBuffer) {
    KV_String a("a text that is longer than sixteen bytes");
    const char *buffer = a.Ptr();
    KV_String b(std::move(a));
    EXPECT_EQ(b.Ptr(), buffer);
    KV_String c("short");
    c = std::move(b);
    EXPECT_EQ(c.Ptr(), buffer);
    for (const KV_String *s : {&a, &b}) {  // NOLINT(bugprone-use-after-move): they are empty, and can be used
        EXPECT_TRUE(s->IsEmpty());
        EXPECT_STREQ(s->Ptr(), "");
    }
}

TEST(KVString, TextsThatDoNotFit32BitsFailAndChangeNothing) {
    KV_String s("abcd");
    EXPECT_THROW(s.ReSize(0xFFFFFFF0u), std::bad_alloc);
    EXPECT_THROW(KV_String(0xFFFFFFFFu), std::bad_alloc);
    EXPECT_THROW(KV_String('x', 0xFFFFFFF0u), std::bad_alloc);
    Helpers h;
    EXPECT_THROW(h.concatCopy(0x80000000u, "", 0x80000000u, ""), std::bad_alloc);
    EXPECT_EQ(s, "abcd");
}

TEST(KVString, NullCountsAsEmpty) {
    KV_String s(kNoText);
    EXPECT_EQ(s.Length(), 0u);
    EXPECT_EQ(s.Capacity(), 15u);
    EXPECT_TRUE(s == kNoText && kNoText == s && !(s < kNoText) && !(kNoText != s));
    s = "abc";
    s += kNoText;
    EXPECT_EQ(kNoText + s + kNoText, "abc");
    EXPECT_EQ(s.FindOneOf(kNoText), -1);
    s(1, 1) = kNoText;
    EXPECT_EQ(s, "ac");
    s = kNoText;
    EXPECT_TRUE(s.IsEmpty());
}

TEST(KVString, ComparisonsDifferAtZeroBytes) {
    const KV_String zero("ab\0cd", 5), ab("ab");
    EXPECT_EQ(zero.Length(), 5u);
    EXPECT_TRUE(zero != ab && zero == KV_String(zero) && zero == "ab" && "ab" == zero);
    EXPECT_EQ(zero.Compare(ab), 0);
    EXPECT_FALSE(zero < ab || zero > ab);
    const KV_String other("ab\0xy", 5);  // to a range the bytes behind the zero are one, its length is not
    EXPECT_TRUE(zero(0, 5) == other(0, 5) && zero(0, 5) > ab(0, 2) && zero(0, 5) > ab && zero(0, 5) > "ab");
    const struct {
        const char *name, *a, *b;
        int order;
    } rows[] = {{"above 127", "\xE9", "a", 1},
                {"prefix", "ab", "abc", -1},
                {"empty", "", "a", -1},
                {"same", "ab", "ab", 0}};
    for (const auto &row : rows) {
        const KV_String a(row.a), b(row.b);
        EXPECT_EQ(a.Compare(b), row.order) << row.name;
        EXPECT_EQ((a > b) - (a < b), row.order) << row.name;
        EXPECT_EQ((a >= row.b) - (a <= row.b), row.order) << row.name;
        EXPECT_EQ((row.a > b) - (row.a < b), row.order) << row.name;
        EXPECT_EQ(a == b, row.order == 0) << row.name;
        const KV_String framed = "<" + a + '>';
        const KV_SubString range = framed(1, a.Length());
        EXPECT_EQ((range > b) - (range < b), row.order) << row.name;
        EXPECT_EQ((b < range) - (b > range), row.order) << row.name;
        EXPECT_EQ((range >= row.b) - (range <= row.b), row.order) << row.name;
        EXPECT_EQ((range > b(0, b.Length())) - (range < b(0, b.Length())), row.order) << row.name;
        EXPECT_TRUE(range == a && a == range && range == row.a && !(range != a(0, a.Length()))) << row.name;
    }
}

TEST(KVString, JoinsHoldExactlyTheirBytes) {
    const KV_String s("a\0b", 3);
    const KV_SubString r = s(1, 2);
    const std::string a("a\0b", 3), z("\0b", 2);
    EXPECT_EQ(bytesOf(s + s), a + a);
    EXPECT_EQ(bytesOf(s + r), a + z);
    EXPECT_EQ(bytesOf(r + s), z + a);
    EXPECT_EQ(bytesOf(r + r), z + z);
    EXPECT_EQ(bytesOf(r + "x"), z + "x");
    EXPECT_EQ(bytesOf("x" + r), "x" + z);
    EXPECT_EQ(bytesOf('x' + s + 'y' + "z"), "x" + a + "yz");
    KV_String text = s;
    text = r + s;  // a plain KV_Str
    EXPECT_EQ(bytesOf(text), z + a);
}

TEST(KVString, OwnBytesMayBeAssignedAndAppended) {
    KV_String s("0123456789");
    for (int i = 0; i < 3; ++i) {  // in place and by a new buffer
        const std::string before = bytesOf(s);
        s += s;
        EXPECT_EQ(bytesOf(s), before + before);
        s += s(1, 4);
        EXPECT_EQ(bytesOf(s), before + before + "1234");
        s += s.Ptr() + 2;
        EXPECT_EQ(bytesOf(s), before + before + "1234" + (before + before + "1234").substr(2));
    }
    s = s(1, 5);
    EXPECT_EQ(s, "12345");
    s = s.Ptr() + 2;
    EXPECT_EQ(s, "345");
    KV_String &same = s;
    s = same;
    s = std::move(same);
    EXPECT_EQ(s, "345");

    Helpers h;
    h += s;
    h.concatCopy(2, h.Ptr() + 1, 2, h.Ptr());  // fits, but each would damage the other
    EXPECT_EQ(bytesOf(h), "4534");
    h.allocCopy(h, 2, 1, 3);
    EXPECT_EQ(bytesOf(h).substr(0, 2), "53");
    EXPECT_EQ(h.Size(), 5u);
}

TEST(KVSubString, WritesThroughIntoTheOwner) {
    const struct {
        const char *name;
        std::uint32_t pos, len;
        const char *text, *expected;
    } rows[] = {{"longer", 1, 2, "xyz", "axyzd"},    {"shorter", 1, 2, "x", "axd"},
                {"same length", 1, 2, "xy", "axyd"}, {"none", 1, 2, "", "ad"},
                {"insert", 4, 0, "x", "abcdx"},      {"all", 0, 4, "x", "x"}};
    for (const auto &row : rows) {
        KV_String s("abcd");
        s(row.pos, row.len) = row.text;
        EXPECT_EQ(bytesOf(s), row.expected) << row.name;
    }
    KV_String s("abcdef");
    EXPECT_EQ(s(2, 3).Position(), 2u);
    s(1, 3) = KV_String("x\0y", 3);  // a zero ends the source and fills the rest
    EXPECT_EQ(bytesOf(s), std::string("ax\0\0ef", 6));
    std::ostringstream out;
    out << s << s(4, 2) << std::setw(3) << std::setfill('.') << s(5, 1);
    EXPECT_EQ(out.str(), "axef..f");
    s(0, 1) = "";  // the tail moves up to its zero; the terminator is kept up with
    EXPECT_EQ(s.Length(), 5u);
    EXPECT_EQ(s.Ptr()[5], 0);
}

// std::string on copies is the plain form of writing a range of a string over another range of it.
TEST(KVSubString, OverlappingReplacementsMeetThePlainForm) {
    std::mt19937 random(1);
    const auto upTo = [&random](std::uint32_t n) { return static_cast<std::uint32_t>(random() % (n + 1)); };
    for (int i = 0; i < 20000; ++i) {
        KV_String s;
        for (std::uint32_t n = upTo(40); n > 0; --n) {
            s += static_cast<char>('a' + upTo(25));
        }
        if (upTo(3) == 0) s.ReSize(64);  // with room, and without
        const std::uint32_t pos = upTo(s.Length()), len = upTo(s.Length() - pos);
        const std::uint32_t from = upTo(s.Length()), count = upTo(s.Length() - from);
        std::string plain = bytesOf(s);
        const std::string before = plain;
        plain.replace(pos, len, before, from, count);
        s(pos, len) = s(from, count);
        ASSERT_EQ(bytesOf(s), plain) << before << ' ' << pos << ' ' << len << ' ' << from << ' ' << count;
        ASSERT_EQ(s.Ptr()[s.Length()], 0);
    }
}

TEST(KVSubString, ReplacementTracesItsDetail) {
    std::ostringstream out;
    KV_Tracer::SetMask("KvBaseTrace", 0x10);
    KV_Tracer::SetStreamP("KvBaseTrace", &out);
    KV_String s("abcd");
    s(0, 1) = s(2, 2);  // behind the range
    s(0, 1) = "xyz";    // from elsewhere
    s(0, 3) = s(0, 1);  // over itself
    KV_Tracer::SetStreamP("KvBaseTrace", nullptr);
    KV_Tracer::SetMask("KvBaseTrace", 0);
    s(0, 1) = "off";
    std::istringstream lines(out.str());
    std::string first, second, third, none;
    std::getline(lines, first);
    std::getline(lines, second);
    std::getline(lines, third);
    EXPECT_FALSE(std::getline(lines, none));
    EXPECT_NE(first.find(" : Overlap=1  tailDelta=1  srcbuf=0"), std::string::npos) << first;
    EXPECT_NE(second.find(" : Overlap=0  tailDelta=0  srcbuf=0"), std::string::npos) << second;
    EXPECT_NE(third.find(" : Overlap=0  tailDelta=0  srcbuf="), std::string::npos) << third;
    EXPECT_EQ(third.find("srcbuf=0"), std::string::npos) << third;
}

TEST(KVString, Searches) {
    const KV_String s("abcabc\0c", 8);
    const struct {
        const char *name;
        int found, expected;
    } rows[] = {{"first", s.Find('b'), 1},
                {"from start", s.Find('b', 2), 4},
                {"absent", s.Find('x'), -1},
                {"zero", s.Find('\0'), -1},
                {"text", s.Find("ca"), 2},
                {"text absent", s.Find("cb"), -1},
                {"empty text", s.Find("", 2), 2},
                {"set", s.FindOneOf("xcb"), 1},
                {"set later", s.FindOneOf("a", 1), 3},
                {"set absent", s.FindOneOf("x"), -1},
                {"last, before the zero", s.ReverseFind('c'), 5}};
    for (const auto &row : rows) {
        EXPECT_EQ(row.found, row.expected) << row.name;
    }
}

TEST(KVString, ChangesInPlace) {
    KV_String s("abca\0a", 6);
    s.FindAndReplace('a', 'x');
    EXPECT_EQ(bytesOf(s), std::string("xbcx\0a", 6));
    EXPECT_EQ(KV_String("\xC3\xA9").ToAscii(), "\x43\x29");
    EXPECT_EQ(bytesOf(KV_String("a\0Z[\xE9", 5).ToUpper()), std::string("A\0Z[\xE9", 5));
    s = "ABCD";
    s(1, 2).ToLower();
    EXPECT_EQ(s, "AbcD");
    s(1, 2).ToUpper();
    EXPECT_EQ(s.ToLower(), "abcd");
    s[0] = 'x';
    EXPECT_EQ(s.At(0), 'x');

    const char *const texts[][3] = {
        {" \t\r\n", "", ""}, {" a b ", "a b ", " a b"}, {"a", "a", "a"}, {"", "", ""}};
    for (const auto &text : texts) {
        KV_String left(text[0]), right(text[0]);
        left.TrimLeft();
        right.TrimRight();
        EXPECT_EQ(left, KV_String(text[1])) << text[0];
        EXPECT_EQ(right, KV_String(text[2])) << text[0];
        EXPECT_EQ(left.Capacity() + right.Capacity(), 30u) << text[0];
    }
}

}  // namespace
