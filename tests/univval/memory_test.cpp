// What the values take from the allocator.

#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/univval/kv_uval_dict.h>
#include <kvbase/univval/kv_uval_text.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <functional>
#include <istream>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "counted_memory.h"
#include "filled_dict.h"
#include "text_streams.h"

namespace {

TEST(Memory, LookingUpAllocatesNothing) {
    const std::string key(200, 'k');
    const KV_DictPath path((key + ":" + key + ":" + key).c_str());
    KV_UValDict dict(0);
    dict.DefineUVal(path, KV_UVAL_DOUBLE, 2, nullptr);
    const long before = heap.allocated;
    dict.SetValue(path, 2.5, 1);
    const double sum = dict.GetValue(path, 0.0, 1) + dict.GetValue(path, 0L, 1) + dict.GetUValDimension(path);
    EXPECT_EQ(heap.allocated, before);
    EXPECT_EQ(sum, 6.5);
}

TEST(Memory, NothingLeaksWhenMemoryRunsOut) {
    using Step = std::function<void(KV_UValDict &, KV_UValDict &)>;
    const std::string path = "a:x:" + std::string(40, 'y');
    const std::pair<const char *, Step> cases[] = {
        {"define", [&](auto &d, auto &) { d.DefineUVal(path.c_str(), KV_UVAL_STRING, 3, nullptr); }},
        {"assign", [](auto &d, auto &t) { t = d; }},
        {"copy to", [](auto &d, auto &t) { d.CopyTo(&t); }},
        {"copy one", [](auto &d, auto &t) { d.CopyUValTo("b:c", &t); }},
        {"move to", [](auto &d, auto &t) { d.MoveTo(&t); }},
        {"move one", [](auto &d, auto &t) { d.MoveUValTo("b:c", &t); }},
        {"move below its place", [](auto &d, auto &) { d.MoveUValTo("g:g", dictAt(d, "g")); }},
        {"define with data",
         [&](auto &d, auto &) {
             const long limit = std::exchange(heap.allowed, -1);
             auto *data = new KV_String("a text that needs a buffer");
             const KV_DictPath built(path.c_str());
             heap.allowed = limit;
             d.DefineUVal(built, KV_UVAL_STRING, 1, data);
         }},
    };
    for (const auto &[name, step] : cases) {
        bool failed = true;
        for (long limit = 0; failed; ++limit) {
            const long before = heap.live;
            {
                Filled dict("a:b=1 b:c:x=2 b:c:z:u=5 e={} f=null g:g:h=7 i:a=1 j:a=1 k:a:b=1");
                Filled target("a:c=2 b:c:z=null e:f=2 f={} g={} i:b=2 j:b=2 k:a:c=2");
                const auto leaves = [&] { return std::ranges::count_if(flat(dict) + flat(target), isdigit); };
                const auto expected = leaves();
                failed = false;
                heap.allowed = limit;
                try {
                    step(dict, target);
                } catch (const std::bad_alloc &) {
                    failed = true;
                }
                heap.allowed = -1;
                EXPECT_TRUE(name[0] != 'm' || leaves() == expected) << name << ", failing after " << limit;
            }
            ASSERT_EQ(heap.live, before) << name << ", failing after " << limit;
        }
    }
}

struct TextCase {
    const char *name, *begin, *repeated, *end;
    std::size_t most;  // bytes for each byte of the text, besides those of the value
};
const TextCase kTexts[] = {
    {"open arrays", "", "[", "", 4},
    {"open dictionaries", "", "<<", "", 4},
    {"dictionaries inside each other", "<<", "/a<<", "", 8},
    {"numbers as keys", "<<", "1 ", "", 8},
    {"names without values", "<<", "/a ", "", 8},
    {"empty names and values", "<<", "()()", ">>", 8},
    {"one name again and again", "<<", "/a()", ">>", 8},
    {"values behind a value", "[<<] satlong", "()", "", 8},
    {"integers", "[", "1 ", "", 8},
    {"integers become doubles", "[", "1 ", "]satdouble", 8},
    {"floats of nothing", "[", ". ", "]", 8},
    {"floats", "[", "1. ", "]", 8},
    {"one-letter texts", "[", "{", "", 8},
    {"one-letter texts as numbers", "[", "{", "]satchar", 8},
    {"empty texts", "[", "()", "]satutfstring", 8},
    {"texts", "[", "(abc)", "]", 8},
    {"a dictionary swallowed by an array", "[[1]<<", "/a(b)", "]satlong", 8},
    {"a long text", "(", "ab", ")", 8},
    {"a long text of escapes", "(", "\\n", ")", 8},
    {"a long key", "<<(", "ab", ")1>>", 8},
    {"a long path", "<</", "a:", " 1>>", 8},
};

struct Reading {
    std::size_t peak = 0, value = 0, left = 0;  // bytes
};

Reading readMeasured(const std::string &text) {
    PieceBuffer buffer(text, 4096);
    std::istream stream(&buffer);
    KV_UVal *value = nullptr;
    const std::size_t before = heap.peak = heap.bytes;
    try {
        KV_ReadUValTxt(stream, value);
    } catch (const KV_FileException &) {
        value = nullptr;
    }
    Reading reading{heap.peak - before, heap.bytes - before, 0};
    delete value;
    reading.left = heap.bytes - before;
    return reading;
}

TEST(Memory, TextTakesInProportionToItsSize) {
    readMeasured("]");  // the first failure makes the tracer
    for (const TextCase &c : kTexts) {
        for (const std::size_t size : {200000U, 230000U, 260000U, 290000U}) {  // stacks grow by half
            std::string text = c.begin;
            while (text.size() < size)
                text += c.repeated;
            text += c.end;
            const Reading reading = readMeasured(text);
            EXPECT_LE(reading.peak, c.most * text.size() + reading.value + 16384) << c.name << ", " << size;
            EXPECT_EQ(reading.value == 0, *c.end == 0) << c.name;
            EXPECT_EQ(reading.left, 0U) << c.name;
        }
    }
}

}  // namespace
