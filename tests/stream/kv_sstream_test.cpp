#include <kvbase/stream/kv_sstream.h>

#include "comma.h"
#include "stream/stream_fixture.h"

namespace {

std::string written(KV_SStream &stream) { return {stream.GetMemPtr(), stream.Length()}; }

TEST(SStream, TextOperations) {
    KV_SStream stream;
    EXPECT_EQ(stream.Putf(1.5f) | stream.Putd(7) | stream.Putc('x') | stream.Puts("\nlast"), 0);
    EXPECT_EQ(written(stream), "1.57x\nlast");
    stream.Open("r", false);
    char line[8];
    EXPECT_STREQ(stream.Gets(line, 4), "1.5");
    EXPECT_STREQ(stream.Gets(line, 8), "7x");
    EXPECT_STREQ(stream.Gets(line, 8), "");  // nothing before the line ending, which stays
    EXPECT_EQ(stream.GetLastError(), 2);
    stream.ClearError();
    EXPECT_EQ(stream.Getc(), '\n');
    EXPECT_STREQ(stream.Gets(line, 8), "last");
    EXPECT_TRUE(stream.EndOfFile());
    EXPECT_EQ(stream.Tell(), 10);
    EXPECT_EQ(stream.Getc(), '\xFF');
    EXPECT_EQ(stream.Putc('a') & stream.Putd(1) & stream.Puts("a"), '\xFF');
    expectFileError([&] { stream.Seek(0, static_cast<KV_Stream::SeekStartPos>(-1)); },
                    "SeekError;   Detail: invalid seekorigin;   OSError: -1");
}

TEST(SStream, NumbersKeepTheirFormUnderAnyGlobalLocale) {
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Comma));
    KV_SStream stream, block("", 0);
    std::locale::global(former);
    for (KV_SStream *each : {&stream, &block}) {
        each->Open("w", false);
        EXPECT_EQ(each->Putf(1.5f) | each->Putc(' ') | each->Putd(1234567), 0);
        each->Open("r", false);
        char text[20];
        EXPECT_STREQ(each->Gets(text, 20), "1.5 1234567");
    }
}

TEST(SStream, ReadCountsBytesAndWriteItems) {
    KV_SStream stream("abcdef", 6);
    std::string buffer(8, '#');
    EXPECT_EQ(stream.Read(buffer.data(), 4, 2), 6U);
    EXPECT_EQ(buffer, "abcdef##");
    EXPECT_FALSE(stream.EndOfFile());
    EXPECT_EQ(stream.Getc(), '\xFF');
    EXPECT_TRUE(stream.EndOfFile() && stream.GetLastError() == 0);
    EXPECT_EQ(stream.Read(buffer.data(), 1, 8), 0U);
    EXPECT_FALSE(stream.EndOfFile());
    stream.Seek(4, KV_Stream::SeekFromStart);
    EXPECT_EQ(stream.Read(buffer.data(), 0, 8) + stream.Read(buffer.data(), 1ULL << 33, 1ULL << 33), 0U);
    stream.Seek(1, KV_Stream::SeekFromCurrent);
    EXPECT_EQ(stream.Getc(), 'f');

    KV_SStream out;
    EXPECT_EQ(out.Write("abcdef", 3, 2), 2U);
    EXPECT_EQ(out.Write("abcdef", 0, 5), 5U);
    EXPECT_EQ(out.Tell(), 6);
    EXPECT_EQ(out.Write("abcdef", 1ULL << 33, 1ULL << 33), 0U);
    EXPECT_EQ(out.GetLastError(), 2);
    EXPECT_EQ(written(out), "abcdef");
}

TEST(SStream, WritingOverABlockReachesItWithClose) {
    std::string block = "0123456789";
    KV_SStream stream(block.data(), 10);
    EXPECT_EQ(stream.GetMemPtr(), block.data());
    EXPECT_TRUE(stream.Open("w", true));
    stream.Puts("ABCDEFGHIJKLM");
    stream.Seek(1, KV_Stream::SeekFromStart);
    stream.Putc('-');
    EXPECT_EQ(block, "0123456789");
    EXPECT_EQ(stream.Length(), 13U);
    while (stream.Getc() != '\xFF') {
    }
    EXPECT_TRUE(stream.Close());  // in spite of the end that reading met
    EXPECT_EQ(block, "A-CDEFGHIJ");
    EXPECT_EQ(stream.Getc(), 'K');
}

TEST(SStream, SnapshotIsTakenOnceAndSharedWithCopies) {
    KV_SStream stream, copy;
    EXPECT_TRUE(copy != stream);
    stream.Puts("first");
    const char *snapshot = stream.GetMemPtr();
    stream.Puts(" second");
    EXPECT_EQ(stream.GetMemPtr(), snapshot);
    EXPECT_TRUE(stream.Close());
    copy = stream;
    EXPECT_TRUE(copy == stream);
    EXPECT_EQ(stream.Getc(), 'f');
    stream = KV_SStream();
    EXPECT_STREQ(copy.GetMemPtr(), "first");
    EXPECT_EQ(copy.Getc(), 'i');
    EXPECT_EQ(copy.Length(), 12U);
}

TEST(SStream, OpenForgetsWhatReadingMet) {
    KV_SStream stream("ab", 2);
    char line[8];
    EXPECT_STREQ(stream.Gets(line, 8), "ab");  // up to the end
    EXPECT_TRUE(stream.Open("w", false));
    EXPECT_EQ(stream.Write("xy", 1, 2), 2U);
    stream.Seek(9, KV_Stream::SeekFromStart);  // fails
    EXPECT_TRUE(stream.Open("r", false));
    EXPECT_STREQ(stream.Gets(line, 8), "xy");
}

TEST(SStream, EmptyBlockMayBeNull) {
    KV_SStream stream(nullptr, 0);
    EXPECT_EQ(stream.GetMemPtr(), nullptr);
    EXPECT_EQ(stream.Read(nullptr, 1, 0), 0U);
    EXPECT_TRUE(stream.Open("w", false) && stream.Putc('a') == 0 && stream.Close());
    EXPECT_EQ(stream.Getc(), 'a');
}

}  // namespace
