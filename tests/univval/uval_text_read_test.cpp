#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/univval/kv_uval_dict.h>
#include <kvbase/univval/kv_uval_text.h>

#include <functional>
#include <istream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "runtime/trace_capture.h"
#include "text_streams.h"

namespace {

using Value = std::unique_ptr<KV_UVal>;
using Token = std::unique_ptr<KV_PsNToken>;
constexpr KV_UVal *kNoValue = nullptr;

Value read(std::istream &stream, const char *name = "") {
    KV_UVal *value = nullptr;
    KV_ReadUValTxt(stream, value, KV_String(name));
    return Value(value);
}

Value read(const std::string &text, const char *name = "") {
    std::istringstream stream(text);
    return read(stream, name);
}

struct ReadCase {
    const char *name;
    const char *text;
    const char *printed;
};
const ReadCase kCases[] = {
    {"number", "42", "(Long)42"},
    {"number before a lone bracket", "42 <", "(Long)42"},
    {"typed number", "65 satchar", "(Char)65"},
    {"float as ulong", "3000000000.0 satulong", "(ULong)3000000000"},
    {"text", "(a b)", "(String)a b"},
    {"text as number", "(12) satlong", "(Long)12"},
    {"number as text", "1.5 satstring", "(String)"},
    {"utf text", "(caf\\303\\251) satutfstring", "(UTFString)caf[e9]"},
    {"pointer", "0 satptr", "(Ptr)0"},
    {"negative number as pointer", "-1 satptr", "(Ptr)0xffffffffffffffff"},
    {"float as pointer", "1.5 satptr", "(Ptr)0x1"},
    {"first element decides", "[1 2.5]", "(Long#2) {1,2,}"},
    {"first element is a float", "[1.5 2]", "(Double#2) {1.5,2,}"},
    {"keywords of elements have no effect", "[ 1 satdouble 2 satchar ]", "(Long#2) {1,2,}"},
    {"texts to numbers", "[ (1) 2.5 (x) ] satfloat", "(Float#3) {1,2.5,0,}"},
    {"what is no scalar keeps its place in an array", "[ 1 /a 3 << >> 5 ]", "(Long#5) {1,0,3,0,5,}"},
    {"inner array keeps its place", "[ 1 [ 2 3 ] 4 ]", "(Long#3) {1,0,0,}"},
    {"typed array of arrays", "[ [ 1 ] 2 ] satlong", "(Long#2) {0,0,}"},
    {"array over an open dictionary", "[ 1 << /a 2 ]", "(Long#4) {1,0,0,2,}"},
    {"an octal bracket counts", "[ a\\135 x", "(String#1) {a,}"},
    {"also behind a number", "[ (x) 1\\050 a) ]", "(String#3) {x,, a,}"},
    {"keys of all kinds", "<< /a 1 (b c) 2 d 3 [ (e) (f) ] 4 >>",
     "    |- a => (Long)1\n    |- b c => (Long)2\n    |- d => (Long)3\n    |- e => (Long)4\n"},
    {"later pair wins", "<< /a 1 /a (x) >>", "    |- a => (String)x\n"},
    {"key with separators", "<< /a:b: 1 /a:c 2 >>",
     "    |- a\n    |    |- b => (Long)1\n    |    |- c => (Long)2\n"},
    {"empty key stores nothing", "<< / 1 () 2 (\\000x) 3 >>", ""},
    {"key through a leaf stores nothing", "<< /a 1 /a:b 2 >>", "    |- a => (Long)1\n"},
    {"key with a zero byte ends there", "<< (a\\000b) 1 >>", "    |- a => (Long)1\n"},
    {"keywords without a value are dropped", "<< satlong /a satchar 1 satshort satlong >>",
     "    |- a => (Short)1\n"},
    {"input ends behind what is whole", "<< /a [ 1 << ] >>", "    |- a => (Long#2) {1,0,}\n"},
};

TEST(UvalTextRead, ReadsValues) {
    for (const ReadCase &c : kCases) {
        EXPECT_EQ(printed(*read(c.text)), c.printed) << c.name;
        for (const std::size_t piece : {0U, 1U, 2U, 3U}) {
            PieceBuffer buffer(c.text, piece);
            std::istream pieces(&buffer);
            EXPECT_EQ(printed(*read(pieces)), c.printed) << c.name << ", in pieces of " << piece;
        }
    }
}

struct FailureCase {
    const char *name;
    const char *text;
    const char *traced;
    const char *message;
};
const char *const kHierarchy = "Error in object hierarchy";
const char *const kPairs = "Error in attribute/value pairs of dictionary";
const FailureCase kFailures[] = {
    {"nothing", "", kHierarchy, kHierarchy},
    {"keyword alone", "satlong", kHierarchy, kHierarchy},
    {"open dictionary", "<< /a 1", kHierarchy, kHierarchy},
    {"lone bracket ends the input", "<< /a 1 > >>", kHierarchy, kHierarchy},
    {"name alone", "/a", "", "KV_PsNToken::PST_UVAL differs "},
    {"array end alone", "]", "[ ] pairs do not match", "KV_ReadUValTxt [ ] pairs do not match"},
    {"empty array", "[]", "Empty arrays are not supported", "KV_ReadUValTxt Empty arrays are not supported"},
    {"array of a name", "[/a 1]", "Illegal type in array", "KV_ReadUValTxt Illegal type in array"},
    {"array of a dictionary", "[<<>> 1]", "Illegal type in array", "KV_ReadUValTxt Illegal type in array"},
    {"dictionary end alone", ">>", "<< >> pairs do not match", "KV_ReadUValTxt << >> pairs do not match"},
    {"key without value", "<< /a 1 /b >>", "Attribute/value pairs in dictionary do not match",
     "KV_ReadUValTxt ttribute/value pairs in dictionary do not match"},
    {"number as key", "<< 1 2 >>", kPairs, kPairs},
    {"name as value", "<< /a /b >>", kPairs, kPairs},
    {"dictionary with a value in an array", "[ 1 << /a 2 >> ]", kPairs, kPairs},
};

TEST(UvalTextRead, FailsAsDocumented) {
    TraceCapture trace(0x01);
    for (const FailureCase &c : kFailures) {
        std::istringstream stream(c.text);
        KV_UValDict untouched(16384);
        KV_UVal *value = &untouched;
        EXPECT_EQ(failure([&] { KV_ReadUValTxt(stream, value); }),
                  std::string("File exception: InvalidFile;   Detail: ") + c.message)
            << c.name;
        EXPECT_EQ(value, kNoValue) << c.name;
        const std::string line =
            *c.traced == 0 ? "" : std::string("*** ERROR *** : module KvBaseTrac : ") + c.traced + "\n";
        EXPECT_EQ(
            trace.Take().rfind(line + "*** ERROR *** : module KvBaseTrac : " + c.message + " KV_File", 0), 0U)
            << c.name;
    }
}

struct TornCase {
    void (*tear)();
    const char *failure;
};
const TornCase kTorn[] = {
    {[] { throw std::runtime_error("torn"); }, "File exception: ReadError;   Detail: torn"},
    {[] { throw KV_BinPackException(); }, "File exception: ReadError;   Detail: Binary Packing Error"},
    {[] { throw KV_FileException("f", KV_FileException::LockError, 0, KV_HERE); },
     "File exception: LockError;   Detail: f"},
    {[] { throw 1; }, "File exception: ReadError;   Detail: unknown"},
};

TEST(UvalTextRead, AStreamThatThrowsIsAFailureOfReading) {
    KV_UVal *value = nullptr;
    KV_UValDict dict(16384);
    const std::function<void(std::istream &)> readers[] = {
        [&](std::istream &stream) { KV_ReadUValTxt(stream, value); },
        [&](std::istream &stream) { KV_ReadUValTxt(stream, value, "b"); },
        [](std::istream &stream) { KV_FindDictionaryInText(stream, "b"); },
        [](std::istream &stream) {
            while (Token(KV_GetToken(stream, nullptr, 0)) != nullptr)
                continue;
        },
    };
    for (const TornCase &c : kTorn) {
        for (const std::ios::iostate mask : {std::ios::goodbit, std::ios::badbit}) {
            for (const auto &reader : readers) {
                TornBuffer buffer("<< /a [ 1 2", c.tear);
                std::istream stream(&buffer);
                stream.exceptions(mask);
                EXPECT_EQ(failure([&] { reader(stream); }), c.failure);
                EXPECT_TRUE(stream.bad()) << c.failure;
            }
        }
        TornBuffer buffer("<< /a 1", c.tear);
        std::istream stream(&buffer);
        EXPECT_EQ(
            failure([&] { dict.ReadTextFile(stream); }),
            std::string("File exception: OpenRdError;   Detail: ReadTextFile failed because stream could "
                        "not be read: ") +
                c.failure);
    }
    EXPECT_EQ(value, kNoValue);
}

TEST(UvalTextRead, EveryTruncationFails) {
    const std::string sample = sampleText();
    for (std::size_t size = 0; size < sample.size(); ++size) {
        EXPECT_THROW(read(sample.substr(0, size)), KV_FileException) << size;
    }
}

TEST(UvalTextRead, FindsADictionaryByName) {
    const std::string text = "a < b (/x <<) /x 1 /x\\074< << /y << /x /x<< /a 7 >> >> >> /x << >>";
    const std::string found = "    |- a => (Long)7\n";
    TraceCapture trace(0x11);
    std::istringstream stream(text);
    EXPECT_EQ(KV_FindDictionaryInText(stream, "x"), 1);
    EXPECT_EQ(trace.Take(), "module KvBaseTrac : KV_FindDictionaryInText: found dictionary x\n");
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(text.find("<< /a")));
    EXPECT_EQ(printed(*read(stream)), found);
    EXPECT_EQ(KV_FindDictionaryInText(stream, "z"), 0);
    EXPECT_TRUE(stream.eof() && !stream.bad());
    trace.Take();
    EXPECT_THROW(read(text, "z"), KV_FileException);
    const std::string lines =
        "*** ERROR *** : module KvBaseTrac : Dictionary z not found\n"
        "*** ERROR *** : module KvBaseTrac : KV_ReadUValTxt coulsd not find file KV_File";
    EXPECT_EQ(trace.Take().rfind(lines, 0), 0U);
    EXPECT_EQ(printed(*read(text, "x")), found);
    PieceBuffer buffer(text, 1), again(text, 1);
    std::istream pieces(&buffer), named(&again);
    EXPECT_EQ(KV_FindDictionaryInText(pieces, "x"), 1);
    EXPECT_TRUE(pieces.bad()) << "it cannot go back";
    EXPECT_EQ(printed(*read(named, "x")), found);
}

TEST(UvalTextRead, MergesAndStaysAsItWasOnFailure) {
    KV_UValDict dict(16384);
    std::istringstream first("<< /a 1 /d << /x 1 /y 2 >> >>"), second("<< /d << /y 3 >> /e (n) >>");
    dict.ReadTextFile(first);
    dict.ReadTextFile(second);
    const std::string merged =
        "    |- a => (Long)1\n    |- d\n    |    |- x => (Long)1\n    |    |- y => (Long)3\n"
        "    |- e => (String)n\n";
    EXPECT_EQ(printed(dict), merged);

    struct {
        const char *text, *name, *failure;
    } const cases[] = {
        {"42", "", "InvalidFile;   Detail: ReadTextFile failed wrong type (not KV_UVAL_DICT)"},
        {"<< /a 2", "",
         "OpenRdError;   Detail: ReadTextFile failed because stream could not be read: "
         "File exception: InvalidFile;   Detail: Error in object hierarchy"},
        {"<< /a 2 >>", "b",
         "OpenRdError;   Detail: ReadTextFile failed because stream could not be read: "
         "File exception: InvalidFile;   Detail: KV_ReadUValTxt coulsd not find file"},
    };
    for (const auto &c : cases) {
        std::istringstream stream(c.text);
        EXPECT_EQ(failure([&] { dict.ReadTextFile(stream, c.name); }),
                  std::string("File exception: ") + c.failure);
    }
    KV_FileSpec missing("no\\such\\file");
    EXPECT_EQ(failure([&] { dict.ReadTextFile(missing); }),
              "File exception: OpenRdError;   Detail: no\\such\\file");
    EXPECT_EQ(printed(dict), merged);
}

TEST(UvalTextRead, DepthCostsNeitherStackNorTime) {
    constexpr int kDepth = 1000000;
    std::string text = "<< ";
    for (int i = 0; i < kDepth; ++i)
        text += i % 8 == 0 ? "/a:b<<" : "/a<<";
    EXPECT_THROW(read(text), KV_FileException);
    for (int i = 0; i <= kDepth; ++i)
        text += ">>";
    const Value value = read(text);
    EXPECT_EQ(value->GetType(), KV_UVAL_DICT);
    EXPECT_THROW(read(std::string(10 * kDepth, '[')), KV_FileException);
}

}  // namespace
