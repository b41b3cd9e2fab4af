#include "runtime/trace_capture.h"
#include "stream/file_mode.h"
#include "stream/stream_fixture.h"
#include "system.h"

namespace {

class FStream : public StreamFiles {};

TEST_F(FStream, ModeIsComposed) {
    const struct {
        const char *mode;
        bool text;
        const char *composed;
    } kCases[] = {{"r", false, "rb"},         {"rb", false, "rb"},       {"r", true, "r"},
                  {"r+", false, "r+b"},       {"rtcS", false, "rtcSb"},  {"w+tcS", false, "w+tcS"},
                  {"w+tcSD", false, "w+tcS"}, {"w+tcSb", true, "w+tcS"}, {"", false, "b"}};
    for (const auto &c : kCases) {
        char composed[6] = "#####";
        kv::detail::composeMode(c.mode, c.text, composed);
        EXPECT_STREQ(composed, c.composed) << c.mode;
    }
}

TEST_F(FStream, OpensByMode) {
    const struct {
        const char *mode;
        bool opens;
        const char *bytes;  // of "old", after an 'X' was written
    } kCases[] = {{"r", true, "old"},
                  {"r+", true, "Xld"},
                  {"ab+", true, "oldX"},
                  {"w", true, "X"},
                  {"r+tcS", true, "Xld"},
                  {"wx", false, "old"},  // the file is there; on Windows no mode
                  {"", false, "old"},
                  {"+r", false, "old"},
                  // POSIX passes over what it does not know.
                  {"rtb", !kOnWindows, "old"},
                  {"rr", !kOnWindows, "old"},
                  {"r+z", !kOnWindows, kOnWindows ? "old" : "Xld"}};
    for (const auto &c : kCases) {
        fill("f", "old");
        KV_FStream stream(spec("f"));
        EXPECT_EQ(stream.Open(c.mode, false), c.opens) << c.mode;
        EXPECT_EQ(stream.IsOpen(), c.opens) << c.mode;
        const bool failed = stream.Putc('X') == '\xFF';
        EXPECT_EQ(stream.GetLastError() != 0, failed) << c.mode;
        stream.ClearError();
        EXPECT_EQ(stream.GetLastError() == 0, c.opens) << c.mode;
        stream.Close();
        EXPECT_EQ(bytes("f"), c.bytes) << c.mode;
    }
    TraceCapture trace(1);
    EXPECT_FALSE(KV_FStream(KV_FileSpec(KV_WString(KV_W("no\\such\u00E9")))).Open("r", false));
    EXPECT_EQ(trace.Take(),
              "*** ERROR *** : module KvBaseTrac : KV_FStream :_wfopen_s returned : 2\n"
              "*** ERROR *** : module KvBaseTrac : KV_FStream : Can't Open : no\\such\xC3\xA9"
              "   mode = r\n");
}

TEST_F(FStream, TextOperations) {
    KV_FStream stream = opened("f", "w+");
    EXPECT_TRUE(stream.Putf(1.5f) > 0 && stream.Putd(7) > 0 && stream.Puts("x\nlast") != '\xFF');
    EXPECT_EQ(stream.Putc('\xFE'), '\xFE');
    EXPECT_EQ(stream.Flush(), 0U);
    if (kOpenFilesAreShared) {
        EXPECT_EQ(bytes("f").size(), 18U);
    }
    stream.Seek(-11, KV_Stream::SeekFromEnd);
    stream.Seek(2, KV_Stream::SeekFromCurrent);
    EXPECT_EQ(stream.Getc(), '7');
    char line[8];
    EXPECT_STREQ(stream.Gets(line, 8), " x\n");
    EXPECT_STREQ(stream.Gets(line, 4), "las");
    EXPECT_EQ(stream.Length(), 18U);
    EXPECT_EQ(stream.Tell(), 16);
    EXPECT_EQ(stream.Read(line, ~0ULL, 3) + stream.Write(line, 3, ~0ULL), 0U);  // more than 64 bits
    EXPECT_EQ(stream.Read(line, 4, 2), 0U);  // items, and there is none whole
    EXPECT_EQ(stream.Gets(line, 8), nullptr);
    EXPECT_EQ(stream.Getc(), '\xFF');
    EXPECT_TRUE(stream.EndOfFile());
    stream.Close();
    EXPECT_EQ(bytes("f"), "  1.5000 7 x\nlast\xFE");
}

TEST_F(FStream, OpenFilesAreSharedAsTheSystemDoes) {
    if (onWine()) GTEST_SKIP() << "Wine lets others open a file that is being written";
    fill("f", "old");
    KV_FStream first = opened("f", "r"), second = opened("f", "r");
    KV_FStream third(spec("f"));
    EXPECT_EQ(third.Open("r+", false), kOpenFilesAreShared) << "two read it";
    first.Close();
    second.Close();
    third = opened("f", "r+");
    EXPECT_EQ(first.Open("r", false), kOpenFilesAreShared) << "one may write to it";
}

TEST_F(FStream, LengthIsTheLow32Bits) {
    KV_FStream stream = opened("f", "w");
    EXPECT_TRUE(stream.Seek(5'000'000'000, KV_Stream::SeekFromStart));  // the file stays a hole
    stream.Putc('x');
    EXPECT_EQ(stream.Tell(), 5'000'000'001);
    EXPECT_EQ(stream.Length(), 705'032'705U);
    EXPECT_EQ(stream.Tell(), 705'032'705);
}

TEST_F(FStream, CopiesShareOneFile) {
    KV_FStream stream = opened("f", "w");
    EXPECT_FALSE(stream == KV_FStream());
    { EXPECT_TRUE(KV_FStream(stream) == stream); }
    EXPECT_EQ(stream.Putc('a'), 'a');  // the copy went, the file stays open
    KV_FStream other = stream;
    *other.GetFileSpec() = spec("g");
    EXPECT_TRUE(other.Open("a", false));  // leaves the shared file to the first
    EXPECT_TRUE(other != stream);
    KV_FStream third = stream;
    EXPECT_TRUE(third.Close());
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_EQ(bytes("f"), "a");
    EXPECT_TRUE(stream.Close() && stream.Open("w", false));
    EXPECT_FALSE(third.IsOpen());
    stream.Puts("new");
    EXPECT_TRUE(stream.Open("r", false));  // closes the former, so that its bytes are there
    EXPECT_EQ(stream.Length(), 3U);
    EXPECT_FALSE(stream.Open("?", false) || stream.IsOpen());
}

TEST_F(FStream, ClosedStreamAnswersWithFailures) {
    KV_FStream stream(spec("f"));
    char buffer[4];
    EXPECT_TRUE(stream.Close());
    EXPECT_FALSE(stream.Seek(0, KV_Stream::SeekFromStart));
    EXPECT_EQ(stream.Read(buffer, 1, 4) + stream.Write("abc", 1, 3) + stream.Length(), 0U);
    EXPECT_EQ(stream.ReadEncrypted(buffer, 3) + stream.WriteEncrypted("abc", 3), 0U);
    EXPECT_TRUE(stream.Flush() != 0 && stream.GetLastError() != 0 && stream.EndOfFile());
    EXPECT_EQ(stream.Tell(), -1);
    EXPECT_EQ(stream.Gets(buffer, 4), nullptr);
    for (const char result :
         {stream.Getc(), stream.Putc('a'), stream.Puts("a"), stream.Putf(1), stream.Putd(1)})
        EXPECT_EQ(result, '\xFF');
    EXPECT_FALSE(stream.Remove());
    fill("f", "");
    EXPECT_TRUE(stream.Remove());
    EXPECT_FALSE(stream.Open("r", false));
    expectFileError([&] { stream.Seek(0, static_cast<KV_Stream::SeekStartPos>(3)); },
                    "SeekError;   Detail: invalid seekorigin;   OSError: -1");
}

TEST_F(FStream, TextHasTheSystemsLineEnds) {
    KV_FStream text(spec("f"));
    ASSERT_TRUE(text.Open("w", true));
    EXPECT_GE(text.Puts("a\nb\n"), 0);
    EXPECT_TRUE(text.Close());
    KV_FStream bytes = opened("f", "r");
    std::string stored;
    EXPECT_TRUE(bytes.ReadFile(stored, false));
    EXPECT_EQ(stored, kOnWindows ? "a\r\nb\r\n" : "a\nb\n");
    ASSERT_TRUE(text.Open("r", true));
    char line[8];
    EXPECT_STREQ(text.Gets(line, sizeof line), "a\n");
}

#if !defined(_WIN32)
// Windows has no device that is always full.
TEST_F(FStream, FullDiskIsToldByCloseAndElseByTheTrace) {
    const KV_FileSpec device(KV_WString(KV_W("\\dev\\full")));
    const auto filled = [&] {
        KV_FStream stream(device);
        EXPECT_TRUE(stream.Open("w", false));
        EXPECT_EQ(stream.Putc('a'), 'a');
        return stream;
    };
    const std::string line = "*** ERROR *** : module KvBaseTrac : KV_FStream : Can't Close : \\dev\\full\n";
    TraceCapture trace(1);
    KV_FStream stream = filled();
    EXPECT_FALSE(stream.Close());
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(stream.Putc('a'), '\xFF');
    EXPECT_TRUE(stream.Close());
    EXPECT_EQ(trace.Take(), "") << "a result has told it";
    stream = filled();
    EXPECT_TRUE(stream.Open("r", false));
    EXPECT_EQ(trace.Take(), line) << "opened anew";
    stream = filled();
    *stream.GetFileSpec() = spec("other");
    stream = KV_FStream();
    EXPECT_EQ(trace.Take(), line) << "replaced, under its own name";
}
#endif

}  // namespace
