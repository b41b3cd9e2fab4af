// What holds for streams on files and in memory alike, and the byte-order family side by side.

#include <kvbase/stream/kv_sstream.h>

#include <limits>

#include "stream/stream_fixture.h"

namespace {

// Each row writes a value whose bytes, from the most significant on, are 81, 82, 83 ...
struct WordCase {
    std::string name, bytes;
    void (*put)(KV_Stream &);
    bool (*get)(KV_Stream &);  // whether it reads the value written
};

#define WORD_CASE(word, value, image)                                                                      \
    {                                                                                                      \
#        word " failed because EOF", image,                                                                \
            [](KV_Stream & s) { s.Put##word(value); },                                                     \
                                                    [](KV_Stream & s) { return s.Get##word() == (value); } \
    }

const WordCase kWordCases[] = {
    WORD_CASE(wordBE, 0x8182U, "\x81\x82"),
    WORD_CASE(wordLE, 0x8182U, "\x82\x81"),
    WORD_CASE(longwordBE, 0x81828384U, "\x81\x82\x83\x84"),
    WORD_CASE(longwordLE, 0x81828384U, "\x84\x83\x82\x81"),
    WORD_CASE(quadwordBE, 0x8182838485868788U, "\x81\x82\x83\x84\x85\x86\x87\x88"),
    WORD_CASE(quadwordLE, 0x8182838485868788U, "\x88\x87\x86\x85\x84\x83\x82\x81"),
};

class Stream : public StreamFiles {};

TEST_F(Stream, WordsHaveTheirLiteralImage) {
    for (const WordCase &c : kWordCases) {
        KV_FStream file = opened("w", "w+");
        KV_SStream memory;
        c.put(file);
        c.put(memory);
        EXPECT_EQ(std::string(memory.GetMemPtr(), memory.Length()), c.bytes) << c.name;
        EXPECT_TRUE(file.Seek(0, KV_Stream::SeekFromStart) && c.get(file) && file.Close()) << c.name;
        EXPECT_EQ(bytes("w"), c.bytes) << c.name;
        EXPECT_TRUE(memory.Open("r", false) && c.get(memory)) << c.name;
        EXPECT_FALSE(memory.EndOfFile());
        EXPECT_FALSE(c.get(memory));  // raises nothing
        EXPECT_TRUE(memory.EndOfFile());
        expectFileError([&] { c.put(memory); }, "WriteError;   Detail: Put" + c.name);
        EXPECT_EQ(memory.Length(), c.bytes.size());
    }
}

TEST_F(Stream, WordsThatTheFileEndsInRaise) {
    for (const WordCase &c : kWordCases)
        for (std::size_t length = 0; length < c.bytes.size(); ++length) {
            fill("short", c.bytes.substr(0, length));
            KV_FStream closed, file = opened("short", "r");  // not to be written
            for (KV_FStream *stream : {&closed, &file}) {
                const auto error = [&](const char *kind) { return kind + c.name + ";   OSError: -1"; };
                expectFileError([&] { c.get(*stream); }, error("ReadError;   Detail: Get"));
                EXPECT_TRUE(stream->EndOfFile());
                expectFileError([&] { c.put(*stream); }, error("WriteError;   Detail: Put"));
            }
        }
}

TEST(PackedFloat, HasTheStatedBits) {
    using Limits = std::numeric_limits<float>;
    const std::pair<float, std::uint32_t> kBothWays[] = {{0.0f, 0},
                                                         {1.0f, 0x3F800000},
                                                         {-2.0f, 0xC0000000},
                                                         {3.14159274f, 0x40490FDB},
                                                         {-0.1f, 0xBDCCCCCD},
                                                         {Limits::max(), 0x7F7FFFFF},
                                                         {Limits::min(), 0x00800000},
                                                         {-Limits::infinity(), 0xFF800000}};
    for (const auto &[f, bits] : kBothWays) {
        KV_SStream stream;
        EXPECT_EQ(stream.Putf754_32(f), bits);
        stream.Open("r", false);
        EXPECT_EQ(stream.Getf754_32(), f);
    }
    EXPECT_EQ(pack754_32(-0.0f), 0U);
    EXPECT_EQ(pack754_32(Limits::denorm_min()), 1U);
    EXPECT_EQ(pack754_32(Limits::quiet_NaN()), 0x7FC00000U);
    EXPECT_EQ(unpack754_32(0x80400000), -0x1.8p-127f);
}

TEST_F(Stream, ReadFileGivesTheTextUpToItsFirstZero) {
    const struct {
        std::string bytes;
        bool result;
        const char *text;
    } kCases[] = {
        {"red green", true, "red green"}, {{"red\0green", 9}, true, "red"}, {"", false, "untouched"}};
    for (const auto &c : kCases) {
        fill("f", c.bytes);
        KV_FStream file(spec("f"));
        KV_SStream memory(c.bytes.data(), static_cast<std::uint32_t>(c.bytes.size()));
        char line[2];
        memory.Seek(0, KV_Stream::SeekFromEnd);
        memory.Gets(line, 2);  // leaves a failed state
        for (KV_Stream *stream : {static_cast<KV_Stream *>(&file), static_cast<KV_Stream *>(&memory)}) {
            std::string out = "untouched";
            EXPECT_EQ(stream->ReadFile(out, false), c.result) << c.bytes;
            EXPECT_EQ(out, c.text);
        }
        EXPECT_FALSE(file.IsOpen());
    }
}

TEST_F(Stream, EncipheredTextComesBackWithoutItsPadding) {
    const struct {
        std::string text;
        std::uint32_t stored;
        std::string read;
    } kCases[] = {{"12345678", 8, "12345678"},
                  {"1234567890", 16, "1234567890"},
                  {"own blanks  ", 16, "own blanks"},
                  {std::string(20, ' '), 24, ""},
                  {"", 0, ""}};
    for (const auto &c : kCases) {
        KV_FStream file(spec("e"));
        KV_SStream memory;
        for (KV_Stream *stream : {static_cast<KV_Stream *>(&file), static_cast<KV_Stream *>(&memory)}) {
            ASSERT_TRUE(stream->Open("w", false));
            EXPECT_EQ(stream->WriteEncrypted(c.text.data(), static_cast<std::uint32_t>(c.text.size())),
                      c.stored);
            EXPECT_EQ(stream->Length(), c.stored);
            ASSERT_TRUE(stream->Close() && stream->Open("r", false));
            std::string buffer(34, '#');  // 31 bytes and their terminator, between two guards
            EXPECT_EQ(stream->ReadEncrypted(buffer.data() + 1, 31), c.stored) << c.text;
            if (c.stored > 0) {
                EXPECT_STREQ(buffer.data() + 1, c.read.c_str());
            }
            EXPECT_EQ(buffer[0] + buffer.substr(2 + c.stored), std::string(33 - c.stored, '#')) << c.text;
            EXPECT_EQ(stream->ReadEncrypted(buffer.data(), 31), 0U);  // at the end
            EXPECT_EQ(buffer[0], '#');
            std::string out;
            EXPECT_EQ(stream->ReadFile(out, true), c.stored > 0) << c.text;
            EXPECT_EQ(out, c.read);
        }
    }
}

}  // namespace
