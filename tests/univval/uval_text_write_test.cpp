#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/univval/kv_uval_dict.h>
#include <kvbase/univval/kv_uval_leaf.h>
#include <kvbase/univval/kv_uval_text.h>

#include <cmath>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>

#include "temp_folder.h"
#include "text_streams.h"

namespace {

std::string written(KV_UVal *value, int indent = 0) {
    std::ostringstream out;
    KV_WriteUValTxt(out, value, indent);
    return out.str();
}

std::string writtenFile(KV_UValDict &dict) {
    const TempFolder folder;
    KV_FileSpec file = KV_FileSpecFromNative(folder.native("values").c_str());
    dict.WriteTextFile(file);
    std::ifstream in(folder / "values", std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void fillSample(KV_UValDict &dict) {
    static_cast<KV_UValLong *>(dict.DefineUVal("count", KV_UVAL_LONG, 0, nullptr))->SetValue(3, 0);
    dict.DefineUVal("gamma", KV_UVAL_DOUBLE, 0, nullptr)->SetDoubleValue(2.2, 0);
    dict.DefineUVal("name", KV_UVAL_STRING, 0, nullptr)->SetStrValue("Sample (one)", 0);
    dict.DefineUVal("nested:flag", KV_UVAL_UCHAR, 0, nullptr)->SetLongValue(1, 0);
    KV_UVal *points = dict.DefineUVal("points", KV_UVAL_DOUBLE, 2, nullptr);
    points->SetDoubleValue(1.5, 0);
    points->SetDoubleValue(2.5, 1);
    dict.DefineUVal("title", KV_UVAL_UTFSTRING, 0, nullptr)->SetStrValue("caf\303\251", 0);
}

TEST(UvalTextWrite, WritesTheSampleByteForByteAndReadsIt) {
    KV_UValDict dict(16384), back(16384);
    fillSample(dict);
    KV_FileSpec sample = KV_FileSpecFromNative(KVBASE_TEST_DATA "/values/sample.txt");
    back.ReadTextFile(sample);
    EXPECT_EQ(printed(back), printed(dict));
    std::ostringstream out;
    dict.WriteTextFile(out);
    EXPECT_EQ(out.str(), sampleText());
    EXPECT_EQ(writtenFile(dict), sampleText());
    dict.SetUVal("nothing", nullptr);
    EXPECT_EQ(written(&dict), sampleText()) << "an entry without a value is left out";
}

struct LeafCase {
    const char *name;
    KV_UValType type;
    int dimension;
    double first;
    const char *expected;
};
const LeafCase kLeaves[] = {
    {"char", KV_UVAL_CHAR, 0, -1, "-1 satchar"},
    {"uchar array", KV_UVAL_UCHAR, 2, 255, "[ 255 7  ] satuchar"},
    {"ushort array", KV_UVAL_USHORT, 2, 65535, "[ 65535 7  ] satushort"},
    {"long least", KV_UVAL_LONG, 0, -2147483648.0, "-2147483648"},
    {"ulong is written signed", KV_UVAL_ULONG, 2, 4294967295.0, "[ -1 7  ] satulong"},
    {"float", KV_UVAL_FLOAT, 0, 0.5, "0.500000 satfloat"},
    {"double array", KV_UVAL_DOUBLE, 2, -1.25, "[ -1.250000 7.000000  ]"},
    {"pointer", KV_UVAL_PTR, 0, 0, "0  satptr"},
    {"pointer array", KV_UVAL_PTR, 2, 0, "[ 0 0  ] satptr"},
    {"string array", KV_UVAL_STRING, 2, 0, "[ () () ]"},
    {"utf string array", KV_UVAL_UTFSTRING, 1, 0, "[ () ] satutfstring"},
    {"utf string", KV_UVAL_UTFSTRING, 0, 0, "()  satutfstring"},
};

TEST(UvalTextWrite, WritesLeaves) {
    for (const LeafCase &c : kLeaves) {
        KV_UValDict dict(16384);
        KV_UVal *value = dict.DefineUVal("v", c.type, c.dimension, nullptr);
        value->SetDoubleValue(c.first, 0);
        value->SetDoubleValue(7, 1);
        if (c.dimension < 1) value->SetDoubleValue(c.first, 0);
        EXPECT_EQ(written(value, 3), c.expected) << c.name;
    }
    EXPECT_EQ(written(nullptr), "");
}

TEST(UvalTextWrite, EscapesTexts) {
    KV_UValString text(0, nullptr);
    text.SetValue(KV_String("()\\\n\303", 5), 0);
    EXPECT_EQ(written(&text), "(\\(\\)\\\\\\n\\303) ");
    text.SetValue(KV_String("\t\f\r\0\177~ \377", 8), 0);
    EXPECT_EQ(written(&text), "(\\t\\f\\r\\000\\177~ \\377) ");
    const std::string longText(20000, 'x');
    text.SetValue(KV_String(longText.c_str()), 0);
    EXPECT_EQ(written(&text), "(" + longText + ") ");
}

TEST(UvalTextWrite, WritesKeysAndIndents) {
    KV_UValDict dict(16384);
    for (const char *key : {"", "a b", "a(", "\303", "a/%", "a\\b", "a:b"}) {
        (*dict.GetValuePtr())[key] = new KV_UValLong(0, nullptr);
    }
    dict.DefineUValDict("z");
    EXPECT_EQ(written(&dict, 1),
              "\n  <<\n  / 0\n  (a b)  0\n  (a\\()  0\n  /a/% 0\n  /a:b 0\n  /a\\b 0\n  /z \n    <<\n    "
              ">>\n  (\\303)  0\n  >>");
    std::ostringstream out;
    KV_Indent(out, -3);
    KV_Indent(out << '|', 40) << '|';
    EXPECT_EQ(out.str(), "|" + std::string(80, ' ') + "|");
}

// The stream's own output beside ours, in every state that changes it.
TEST(UvalTextWrite, DoublesGoOutAsTheStreamWritesThem) {
    std::mt19937_64 random(21);
    KV_UValDouble value(0, nullptr);
    for (int round = 0; round < 20000; ++round) {
        std::ostringstream ours, plain;
        for (std::ostringstream *stream : {&ours, &plain}) {
            if (round % 4 == 1) *stream << std::setprecision(round % 17);
            if (round % 8 == 2) stream->imbue(std::locale(std::locale::classic(), new Comma));
            if (round % 8 == 6) *stream << std::showpos;
            if (round % 8 == 7) *stream << std::uppercase;
        }
        const double scale = std::pow(10.0, static_cast<double>(random() % 40) - 12);
        value.SetValue((static_cast<double>(random()) / 9e18 - 1) * scale, 0);
        if (round < 16) value.SetValue(round < 8 ? std::numeric_limits<double>::infinity() : -0.0, 0);
        KV_WriteUValTxt(ours, &value, 0);
        plain << std::fixed << value.GetValue(0);
        ASSERT_EQ(ours.str(), plain.str()) << round;
        ASSERT_EQ(ours.flags(), plain.flags()) << round;
    }
}

TEST(UvalTextWrite, FilesHaveADecimalPointInEveryLocale) {
    KV_UValDict dict(16384), back(16384);
    dict.DefineUVal("a", KV_UVAL_DOUBLE, 0, nullptr)->SetDoubleValue(1234567.5, 0);
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Comma));
    std::stringstream stream;
    stream << std::setw(20) << std::hex;
    dict.WriteTextFile(stream);
    EXPECT_EQ(stream.str(), "<<\n/a 1234567.500000\n>>");
    EXPECT_EQ(writtenFile(dict), stream.str());
    stream.imbue(std::locale());
    back.ReadTextFile(stream);
    EXPECT_EQ(back.GetValue("a", 0.0, 0), 1234567.5);
    const auto &point = std::use_facet<std::numpunct<char>>(stream.getloc());
    EXPECT_TRUE(point.decimal_point() == '.' && point.thousands_sep() == '\0');
    std::locale::global(former);
}

TEST(UvalTextWrite, FailuresAreTold) {
    KV_UValDict dict(16384);
    fillSample(dict);
    KV_FileSpec nowhere("no\\such\\file");
    EXPECT_EQ(failure([&] { dict.WriteTextFile(nowhere); }),
              "File exception: OpenWrError;   Detail: WriteTextFile failed because file is NOT open");
#if !defined(_WIN32)  // which has no device that is always full
    KV_FileSpec full("\\dev\\full");
    EXPECT_EQ(failure([&] { dict.WriteTextFile(full); }),
              "File exception: WriteError;   Detail: WriteTextFile failed because file could not be written");
#endif
}

TEST(UvalTextWrite, FailingStreamsTurnBadAndThrowWhereTheyAreSetTo) {
    KV_UValDict dict(16384);
    fillSample(dict);
    PieceBuffer full("", 1);  // takes nothing
    TornBuffer torn("", [] { throw std::runtime_error("torn"); });
    const std::string notOpen =
        "File exception: OpenWrError;   Detail: WriteTextFile failed because stream is NOT open";
    const auto thrown = [](const auto &write) -> std::string {
        try {
            return failure(write);
        } catch (const std::ios::failure &) {
            return "stream";
        } catch (const std::runtime_error &e) {
            return e.what();
        }
    };
    struct {
        std::streambuf &buffer;
        std::ios::iostate mask;
        std::string value, file;
    } const cases[] = {
        {full, std::ios::goodbit, "none", "none"},
        {full, std::ios::badbit, "stream", notOpen},
        {torn, std::ios::goodbit, "none", notOpen},
        {torn, std::ios::badbit, "torn", notOpen},
    };
    for (const auto &c : cases) {
        std::ostream value(&c.buffer), indent(&c.buffer), file(&c.buffer);
        for (std::ostream *stream : {&value, &indent, &file})
            stream->exceptions(c.mask);
        EXPECT_EQ(thrown([&] { KV_WriteUValTxt(value, &dict, 0); }), c.value);
        EXPECT_EQ(thrown([&] { KV_Indent(indent, 1); }), c.value);
        EXPECT_EQ(thrown([&] { dict.WriteTextFile(file); }), c.file);
        EXPECT_TRUE(value.bad() && indent.bad() && file.bad()) << c.value << ", " << c.file;
    }
}

TEST(UvalTextWrite, DepthCostsNoStack) {
    constexpr int kDepth = 1000000;
    KV_UValDict dict(16384);
    for (KV_UValDict *inner = &dict; auto i : std::string(kDepth, 'a'))
        inner = inner->DefineUValDict(KV_String(i, 1));
    // Far below 0 nothing is indented, so the text stays short.
    const std::string text = written(&dict, -2 * kDepth);
    EXPECT_EQ(text.size(), 1U + 3 + (3U + 1 + 3 + 3) * kDepth + 2);
}

}  // namespace
