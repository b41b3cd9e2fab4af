#include "kvbase/univval/kv_uval.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <utility>

#include "comma.h"
#include "kvbase/text/kv_system_string.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_leaf.h"
#include "text_streams.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kMin32 = std::numeric_limits<std::int32_t>::min();

std::unique_ptr<KV_UVal> makeValue(KV_UValType type, std::int32_t dimension = 0, void *data = nullptr) {
    KV_UValDict dict(16384);
    KV_UVal *value = dict.DefineUVal("v", type, dimension, data);
    dict.GetValuePtr()->clear();  // takes the value out
    return std::unique_ptr<KV_UVal>(value);
}

std::string text(KV_UVal &value, std::int32_t index = 0) {
    KV_String result("before");
    value.GetStrValue(result, index);
    return result.Ptr();
}

struct TypeCase {
    KV_UValType type;
    int number, family;
    const char *word;  // as printed
};
const TypeCase kTypes[] = {
    {KV_UVAL_DICT, 1, 1, "dictionary"},      {KV_UVAL_CHAR, 2, 2, "Char"},
    {KV_UVAL_UCHAR, 3, 2, "UChar"},          {KV_UVAL_SHORT, 4, 2, "Short"},
    {KV_UVAL_USHORT, 5, 2, "UShort"},        {KV_UVAL_LONG, 6, 2, "Long"},
    {KV_UVAL_ULONG, 7, 2, "ULong"},          {KV_UVAL_FLOAT, 8, 2, "Float"},
    {KV_UVAL_DOUBLE, 9, 2, "Double"},        {KV_UVAL_STRING, 10, 3, "String"},
    {KV_UVAL_UTFSTRING, 11, 3, "UTFString"}, {KV_UVAL_PTR, 12, 4, "Ptr"},
};

TEST(UVal, TypesAndFamiliesHaveTheirNumbers) {
    for (const TypeCase &c : kTypes) {
        const auto value = makeValue(c.type, -3);
        EXPECT_EQ(value->GetType(), c.number) << c.word;
        EXPECT_EQ(value->GetFamily(), c.family) << c.word;
        EXPECT_EQ(value->GetDimension(), 0) << c.word;
        EXPECT_EQ(value->GetNrItemsToPrint(), 0) << c.word;
    }
}

struct GetCase {
    const char *name;
    double stored;
    KV_UValType type;
    int asChar, asUChar, asShort, asUShort;
    std::int32_t asLong;
    std::uint32_t asULong;
    float asFloat;
};
// Worked out by hand from two's complement.
const GetCase kGets[] = {
    {"char -1", -1, KV_UVAL_CHAR, -1, 255, -1, 65535, -1, 4294967295u, -1.f},
    {"uchar 255", 255, KV_UVAL_UCHAR, -1, 255, 255, 255, 255, 255u, 255.f},
    {"short -2", -2, KV_UVAL_SHORT, -2, 254, -2, 65534, -2, 4294967294u, -2.f},
    {"ushort 65535", 65535, KV_UVAL_USHORT, -1, 255, -1, 65535, 65535, 65535u, 65535.f},
    {"long 4660", 0x1234, KV_UVAL_LONG, 0x34, 0x34, 0x1234, 0x1234, 0x1234, 0x1234u, 4660.f},
    {"long least", -2147483648.0, KV_UVAL_LONG, 0, 0, 0, 0, kMin32, 2147483648u, -2147483648.f},
    {"ulong greatest", 4294967295.0, KV_UVAL_ULONG, -1, 255, -1, 65535, -1, 4294967295u, 4294967296.f},
    {"float -1.5", -1.5, KV_UVAL_FLOAT, -1, 255, -1, 65535, -1, 4294967295u, -1.5f},
    {"double 3e9", 3e9, KV_UVAL_DOUBLE, 0, 0, 0, 0, kMin32, 3000000000u, 3e9f},
    {"double under 2^31", 2147483647.5, KV_UVAL_DOUBLE, -1, 255, -1, 65535, 2147483647, 2147483647u, 0x1p31f},
    {"double above -2^31 - 1", -2147483648.9, KV_UVAL_DOUBLE, 0, 0, 0, 0, kMin32, 2147483648u, -2147483648.f},
    {"double -6e9", -6e9, KV_UVAL_DOUBLE, 0, 0, 0, 0, kMin32, 2589934592u, -6e9f},
    {"double 2^63", 9223372036854775808.0, KV_UVAL_DOUBLE, 0, 0, 0, 0, kMin32, 0u, 9223372036854775808.f},
    {"double 1e300", 1e300, KV_UVAL_DOUBLE, 0, 0, 0, 0, kMin32, 0u, std::numeric_limits<float>::infinity()},
    {"NaN", kNaN, KV_UVAL_DOUBLE, 0, 0, 0, 0, kMin32, 0u, std::numeric_limits<float>::quiet_NaN()},
};

TEST(UVal, ConvertsOnReading) {
    for (const GetCase &c : kGets) {
        SCOPED_TRACE(c.name);
        const auto value = makeValue(c.type);
        value->SetDoubleValue(c.stored, 0);
        EXPECT_EQ(static_cast<signed char>(value->GetCharValue(0)), c.asChar);
        EXPECT_EQ(value->GetUCharValue(0), c.asUChar);
        EXPECT_EQ(value->GetShortValue(0), c.asShort);
        EXPECT_EQ(value->GetUShortValue(0), c.asUShort);
        EXPECT_EQ(value->GetLongValue(0), c.asLong);
        EXPECT_EQ(value->GetULongValue(0), c.asULong);
        if (std::isnan(c.stored)) {
            EXPECT_TRUE(std::isnan(value->GetFloatValue(0)) && std::isnan(value->GetDoubleValue(0)));
            continue;
        }
        EXPECT_EQ(value->GetFloatValue(0), c.asFloat);
        EXPECT_EQ(value->GetDoubleValue(0), c.stored);
    }
}

struct SetCase {
    const char *name;
    KV_UValType type;
    void (*set)(KV_UVal &);
    const char *printed;
};
const SetCase kSets[] = {
    {"char from long 511", KV_UVAL_CHAR, [](KV_UVal &v) { v.SetLongValue(511, 0); }, "(Char)-1"},
    {"uchar from char -1", KV_UVAL_UCHAR, [](KV_UVal &v) { v.SetCharValue(-1, 0); }, "(UChar)255"},
    {"uchar from 300.7", KV_UVAL_UCHAR, [](KV_UVal &v) { v.SetDoubleValue(300.7, 0); }, "(UChar)44"},
    {"short from uchar 255", KV_UVAL_SHORT, [](KV_UVal &v) { v.SetUCharValue(255, 0); }, "(Short)255"},
    {"short from ulong", KV_UVAL_SHORT, [](KV_UVal &v) { v.SetULongValue(100000, 0); }, "(Short)-31072"},
    {"ushort from float -1", KV_UVAL_USHORT, [](KV_UVal &v) { v.SetFloatValue(-1, 0); }, "(UShort)65535"},
    {"long from ushort", KV_UVAL_LONG, [](KV_UVal &v) { v.SetUShortValue(65535, 0); }, "(Long)65535"},
    {"long from 3e9", KV_UVAL_LONG, [](KV_UVal &v) { v.SetDoubleValue(3e9, 0); }, "(Long)-2147483648"},
    {"ulong from short -1", KV_UVAL_ULONG, [](KV_UVal &v) { v.SetShortValue(-1, 0); }, "(ULong)4294967295"},
    {"ulong from 3e9", KV_UVAL_ULONG, [](KV_UVal &v) { v.SetDoubleValue(3e9, 0); }, "(ULong)3000000000"},
    {"ulong from float", KV_UVAL_ULONG, [](KV_UVal &v) { v.SetFloatValue(-1.5, 0); }, "(ULong)4294967295"},
    {"float from ulong", KV_UVAL_FLOAT, [](KV_UVal &v) { v.SetULongValue(~0U, 0); }, "(Float)4.29497e+09"},
    {"double from long -1", KV_UVAL_DOUBLE, [](KV_UVal &v) { v.SetLongValue(-1, 0); }, "(Double)-1"},
};

TEST(UVal, ConvertsOnWriting) {
    for (const SetCase &c : kSets) {
        const auto value = makeValue(c.type);
        c.set(*value);
        EXPECT_EQ(printed(*value), c.printed) << c.name;
    }
}

struct TextCase {
    KV_UValType type;
    const char *in, *out;
};
const TextCase kTexts[] = {
    {KV_UVAL_CHAR, "200", "-56"},
    {KV_UVAL_UCHAR, "-1", "255"},
    {KV_UVAL_SHORT, " -40000", "25536"},
    {KV_UVAL_USHORT, "70000", "4464"},
    {KV_UVAL_USHORT, "-1", "65535"},
    {KV_UVAL_LONG, "12abc", "12"},
    {KV_UVAL_LONG, "-99999999999999999999999", "-2147483648"},
    {KV_UVAL_ULONG, "4294967295", "2147483647"},  // as atol of 32 bits
    {KV_UVAL_ULONG, "-1", "-1"},                  // 4294967295
    {KV_UVAL_FLOAT, "0.5", "0.500000"},
    {KV_UVAL_DOUBLE, "-2.25e2x", "-225.000000"},
    {KV_UVAL_DOUBLE, "x", "0.000000"},
    {KV_UVAL_UTFSTRING, "caf\xE9", "caf#"},
    {KV_UVAL_UTFSTRING, "caf\xC3\xA9", "caf\xC3\xA9"},
    {KV_UVAL_PTR, "8589934591", "0xFFFFFFFF"},
    {KV_UVAL_PTR, "text", "0x00000000"},
};

TEST(UVal, ReadsAndWritesText) {
    for (const TextCase &c : kTexts) {
        const auto value = makeValue(c.type);
        value->SetStrValue(KV_String("17"), 0);
        value->SetStrValue(KV_String(c.in), 0);
        EXPECT_EQ(text(*value), c.out) << "type " << c.type << " from " << c.in;
    }
    KV_UValDouble huge(0, nullptr);
    huge.SetDoubleValue(std::ldexp(1.0, 1000), 0);
    EXPECT_EQ(text(huge).size(), 302u + 7u);  // 2^1000 has 302 digits
    KV_UValPtr pointers(2, nullptr);
    pointers.SetStrValue(KV_String("16"), 1);
    EXPECT_EQ(pointers.GetValue(1), nullptr);
    EXPECT_EQ(text(pointers, 2), "0x00000010") << "the scan goes to the scalar slot";
}

TEST(UVal, OtherIndexesMeanTheScalarSlot) {
    for (int type = KV_UVAL_CHAR; type <= KV_UVAL_UTFSTRING; ++type) {
        SCOPED_TRACE(type);
        const auto scalar = makeValue(static_cast<KV_UValType>(type), -3);
        const auto array = makeValue(static_cast<KV_UValType>(type), 3);
        array->SetStrValue(KV_String("4"), 2);
        array->SetStrValue(KV_String("9"), 3);
        scalar->SetStrValue(KV_String("7"), 12345);
        const std::string tail = type == KV_UVAL_FLOAT || type == KV_UVAL_DOUBLE ? ".000000" : "";
        EXPECT_EQ(text(*array, 2), "4" + tail);
        for (const std::int32_t index : {3, -1, std::numeric_limits<std::int32_t>::max(), kMin32}) {
            EXPECT_EQ(text(*array, index), "9" + tail);
            EXPECT_EQ(text(*scalar, index), "7" + tail);
        }
        const std::unique_ptr<KV_UVal> copy(array->DeepCopy());
        EXPECT_EQ(text(*copy, 2), "4" + tail);
        EXPECT_EQ(text(*copy, 3), "9" + tail);
    }
}

// The address sanitizer shows a second owner of a block as a double release, a forgotten one as a leak.
TEST(UVal, CopiesNeverShareAnAdoptedBlock) {
    KV_UValLong numbers(3, new std::int32_t[3]{1, 2, 3});
    numbers.SetNrItemsToPrint(2);
    KV_UValLong copy(numbers);
    numbers.SetValue(50, 1);
    EXPECT_EQ(printed(copy), "(Long#3) {1,2,}");
    EXPECT_NE(copy.GetValuePtr(1), numbers.GetValuePtr(1));

    KV_UValString single(4, new KV_String("one"));
    EXPECT_EQ(single.GetDimension(), 1) << "an adopted string is one object";
    const std::unique_ptr<KV_UVal> text(single.DeepCopy());
    single.SetValue("two", 0);
    EXPECT_STREQ(text->GetCStringValue(0), "one");
}

TEST(UVal, MovesRawElements) {
    KV_UValFloat number(2, nullptr);
    std::uint32_t bits = 0x3FC00000;  // 1.5f
    number.SetPtrValue(&bits, 1);
    number.SetPtrValue(nullptr, 1);
    EXPECT_EQ(number.GetValue(1), 1.5f);
    bits = 0;
    number.GetPtrValue(&bits, 1);
    EXPECT_EQ(bits, 0x3FC00000u);
    KV_UValPtr pointer(0, nullptr);
    void *address = &bits;
    pointer.SetPtrValue(&address, 0);
    EXPECT_EQ(pointer.GetValue(0), &bits);
    KV_UValUTFString utf(0, nullptr);
    KV_String bytes("a\0\xE9", 3), back;
    utf.SetPtrValue(&bytes, 0);
    utf.SetPtrValue(nullptr, 0);
    utf.GetPtrValue(&back, 0);
    EXPECT_EQ(back, bytes) << "bytes as they stand";
    KV_UValString plain(0, nullptr);
    plain.SetStrValue(bytes, 0);
    back = "";
    plain.GetStrValue(back, 0);
    EXPECT_EQ(back, bytes);
}

TEST(UVal, Prints) {
    for (const TypeCase &c : kTypes) {
        if (c.type == KV_UVAL_DICT || c.type == KV_UVAL_PTR) continue;
        const std::string word = std::string("(") + c.word;
        const auto scalar = makeValue(c.type), array = makeValue(c.type, 3);
        for (int i = 0; i < 3; ++i)
            array->SetStrValue(KV_String(i < 2 ? "65" : "66"), i);
        scalar->SetStrValue(KV_String("65"), 0);
        EXPECT_EQ(printed(*scalar), word + ")65");
        const std::pair<int, const char *> items[] = {
            {array->GetNrItemsToPrint(), "{65,65,66,}"}, {2, "{65,65,}"}, {999, "{65,65,66,}"}, {0, ""}};
        for (const auto &[count, shown] : items) {
            array->SetNrItemsToPrint(count);
            EXPECT_EQ(printed(*array), word + "#3) " + shown);
        }
    }
    KV_UValUTFString utf(0, nullptr);
    utf.SetValue("caf\xC3\xA9", 0);
    EXPECT_EQ(printed(utf), "(UTFString)caf[e9]");
    KV_UValPtr pointer(1, nullptr);
    pointer.SetValue(&pointer, 0);
    std::ostringstream expected;
    expected << "(Ptr#1) {" << static_cast<const void *>(&pointer) << ",}";
    EXPECT_EQ(printed(pointer), expected.str());
    KV_UValLong thousand(1000, nullptr);
    thousand.SetNrItemsToPrint(0);
    std::ostringstream grouping;
    grouping.imbue(std::locale(std::locale::classic(), new Comma));
    grouping << thousand;
    EXPECT_EQ(grouping.str(), "(Long#1000) ");
}

TEST(UVal, OtherFamiliesAnswerNeutrally) {
    KV_SystemString system;
    KV_SystemString::Initialize(nullptr);
    for (const KV_UValType type : {KV_UVAL_STRING, KV_UVAL_UTFSTRING}) {
        const auto digits = makeValue(type);
        digits->SetStrValue(KV_String("12"), 0);
        digits->SetLongValue(5, 0);
        EXPECT_EQ(digits->GetLongValue(0), 0);
        EXPECT_EQ(digits->GetDoubleValue(0), 0.0);
        EXPECT_STREQ(digits->GetCStringValue(0), "12");
        system = KV_SystemString();
        EXPECT_EQ(digits->GetSystemStringValue(&system, 0), 0);
        EXPECT_STREQ(system.GetSystemString().Ptr(), "12");
        EXPECT_EQ(digits->GetSystemStringValue(nullptr, 0), -1);
    }
    for (const KV_UValType type : {KV_UVAL_LONG, KV_UVAL_PTR, KV_UVAL_DICT}) {
        const auto value = makeValue(type);
        EXPECT_EQ(value->GetCStringValue(0), nullptr);
        EXPECT_EQ(value->GetSystemStringValue(&system, 0), -1);
    }
}

TEST(UVal, SystemTextTellsWhatItsCodePageLacks) {
    struct Latin : KV_TextEncodingConverter {
        Latin() { mCodePage = 1252; }
    };
    const KV_TextEncodingConverter former = std::exchange(KV_SystemString::mSystemTEC, Latin());
    KV_SystemString system;
    const auto omega = makeValue(KV_UVAL_UTFSTRING);
    omega->SetStrValue(KV_String("\xCE\xA9 \xC3\xA9"), 0);
    EXPECT_EQ(omega->GetSystemStringValue(&system, -1), -1) << "the scalar, by any index";
    EXPECT_STREQ(system.GetSystemString().Ptr(), "? \xE9");
    KV_SystemString::mSystemTEC = former;
}

#if defined(__GXX_ABI_VERSION) && defined(__x86_64__)
// Modules that were built before call through these slots.
template <class Member>
std::ptrdiff_t slotOf(Member member) {
    std::ptrdiff_t parts[2];
    static_assert(sizeof(parts) == sizeof(member));
    std::memcpy(parts, &member, sizeof(parts));
    return (parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void *));
}

TEST(UVal, VirtualOperationsKeepTheirOrder) {
    EXPECT_EQ(slotOf(&KV_UVal::DeepCopy), 0);
    EXPECT_EQ(slotOf(&KV_UVal::GetPtrValue), 4);
    EXPECT_EQ(slotOf(&KV_UVal::SetCharValue), 5);
    EXPECT_EQ(slotOf(&KV_UVal::SetLongValue), 13);
    EXPECT_EQ(slotOf(&KV_UVal::GetDoubleValue), 20);
    EXPECT_EQ(slotOf(&KV_UVal::GetSystemStringValue), 22);
    EXPECT_EQ(slotOf(&KV_UVal::PrintOn), 25) << "behind the two entries of the destructor";
}
#endif

}  // namespace
