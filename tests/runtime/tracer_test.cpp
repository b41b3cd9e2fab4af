#include <gtest/gtest.h>
#include <kvbase/runtime/kv_lock.h>

#include <cstdlib>
#include <iostream>
#include <locale>
#include <map>
#include <thread>
#include <vector>

#include "comma.h"
#include "countdown.h"
#include "runtime/trace_capture.h"
#include "runtime/trace_line.h"
#include "runtime/trace_sink.h"

namespace {

using kv::detail::kTraceDetail;
using kv::detail::traceLine;

// Traces while the library's own static objects may not stand yet; takes the first slot of the table.
const KV_Tracer *const earlyTracer = [] {
    KV_Tracer::SetTracing("Early", 0x1);
    const KV_Tracer *tracer = KV_Tracer::FindOrCreate("Early");
    *tracer->Stream() << "early" << std::endl;
    return tracer;
}();

TEST(Tracer, StartsOffAndIsSharedByNamesThatAgreeInTenCharacters) {
    std::uint32_t mask = 7;
    std::ostream *stream = &dout;
    EXPECT_EQ(KV_Tracer::GetMask("MeasureTool", &mask), 0);
    EXPECT_EQ(KV_Tracer::GetStreamP("MeasureToo", &stream), 0);
    EXPECT_EQ(mask, 0u);
    EXPECT_EQ(stream, nullptr);
    KV_Tracer::SetMask("MeasureTools", 0x1);
    const KV_Tracer *tracer = KV_Tracer::FindOrCreate("MeasureTool");
    EXPECT_FALSE(tracer->IsOn(0x1)) << "a mask alone";
    KV_Tracer::SetStreamP("MeasureTool", &dout);
    EXPECT_TRUE(tracer->IsOn(0x1));
    EXPECT_STREQ(tracer->Name(), "MeasureToo");
    EXPECT_NE(KV_Tracer::FindOrCreate("MeasureTo"), tracer);
}

TEST(Tracer, CopiesStandOutsideTheTableAndAssignedRecordsInIt) {
    std::ostringstream stream;
    KV_Tracer *const first = KV_Tracer::FindOrCreate("Copied"), *const second =
                                                                    KV_Tracer::FindOrCreate("Over");
    KV_Tracer::SetStreamP("Copied", &stream);
    KV_Tracer::SetMask("Copied", 0x6);
    const KV_Tracer copy(*first);
    *second = copy;
    KV_Tracer::SetMask("Copied", 0x1);
    for (const KV_Tracer *tracer : {&copy, static_cast<const KV_Tracer *>(second)}) {
        EXPECT_STREQ(tracer->Name(), "Copied");
        EXPECT_TRUE(tracer->IsOn(0x2) && !tracer->IsOn(0x1)) << "a mask of its own";
        EXPECT_EQ(tracer->Stream(), &stream);
    }
    EXPECT_EQ(KV_Tracer::FindOrCreate("Copied"), first);
    kv::detail::disconnectTracers(stream);
    EXPECT_EQ(first->Stream(), nullptr);
    EXPECT_EQ(second->Stream(), nullptr) << "the second of one name";
    EXPECT_EQ(copy.Stream(), &stream) << "is not reached";
}

// Last of its suite: it fills the table for good.
TEST(Tracer, TableHoldsSixtyFourNames) {
    const KV_Tracer *last = kv::detail::baseTracer();
    for (int i = 0; const KV_Tracer *next = KV_Tracer::FindOrCreate(std::to_string(i).c_str()); ++i) {
        ASSERT_LT(i, 64);
        last = next;
    }
    EXPECT_EQ(last - earlyTracer, 63);
    EXPECT_EQ(KV_Tracer::SetMask("0", 5), 0);
    std::uint32_t mask = 7;
    std::ostream *stream = &dout;
    for (const char *none : {"65th", "", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(KV_Tracer::SetMask(none, 1), -1);
        EXPECT_EQ(KV_Tracer::SetStreamP(none, &dout), -1);
        EXPECT_EQ(KV_Tracer::GetMask(none, &mask), -1);
        EXPECT_EQ(KV_Tracer::GetStreamP(none, &stream), -1);
        EXPECT_EQ(mask, 0u);
        EXPECT_EQ(stream, nullptr);
    }
    KV_Tracer *const second = KV_Tracer::FindOrCreate("1");
    *KV_Tracer::FindOrCreate("0") = KV_Tracer();  // frees a slot in front of the second
    EXPECT_EQ(KV_Tracer::FindOrCreate("1"), second);
    EXPECT_EQ(KV_Tracer::FindOrCreate("65th"), second - 1);
}

// The pieces that a buffer hands on.
struct Pieces : std::vector<std::string> {
    static void take(void *user, const char *text, int count) {
        EXPECT_EQ(text[count], '\0');
        static_cast<Pieces *>(user)->emplace_back(text, static_cast<std::size_t>(count));
    }
};

TEST(KalvorTrace, TestsOneBitAndLeavesTheTextAsItIs) {
    struct LevelCase {
        std::uint32_t level, bit;
        const char *beginning;
        bool flushed;
    };
    const LevelCase levels[] = {
        {0x001, 0x001, "*** ERROR *** : module ", false},
        {0x002, 0x002, "WARNING : module ", false},
        {0x003, 0x800, "module ", true},  // two bits count as none of them
        {0x400, 0x400, "module ", true},
        {0x1000, 0x800, "module ", true},
        {0, 0x800, "module ", true},
    };
    for (const LevelCase &c : levels) {
        SCOPED_TRACE(c.level);
        Pieces pieces;
        KV_FuncStrmbuf buffer(Pieces::take, &pieces);
        std::ostream stream(&buffer);
        KV_Tracer::SetStreamP("KvBaseTrace", &stream);
        std::string text = "100% cyan\nand more";
        KV_Tracer::SetMask("KvBaseTrace", ~c.bit);
        KalvorTrace(text, c.level);
        stream.flush();
        EXPECT_TRUE(pieces.empty()) << "off";
        KV_Tracer::SetMask("KvBaseTrace", c.bit);
        KalvorTrace(text, c.level);
        EXPECT_EQ(pieces.size(), c.flushed ? 1u : 0u);
        stream.flush();
        EXPECT_EQ(pieces.at(0), c.beginning + std::string("KvBaseTrac : 100% cyan\nand more"));
        KV_Tracer::SetTracing("KvBaseTrace", 0);
    }
}

// A piece of a line that lets the other threads go on in the middle of it.
struct Pause {
    Countdown &begun;
    bool &done;
};
std::ostream &operator<<(std::ostream &out, const Pause &pause) {
    pause.begun.countDown();
    for (int i = 0; i < 100; ++i)
        std::this_thread::yield();
    pause.done = true;
    return out << " - ";
}

TEST(TraceLine, LinesOfSeveralThreadsComeWholeAndDecimal) {
    constexpr int kThreads = 3, kLines = 50;
    TraceCapture trace(kTraceDetail);
    trace.stream.imbue(std::locale(std::locale::classic(), new Comma));
    trace.stream << std::hex << std::showpos << std::boolalpha;
    const auto flags = trace.stream.flags();
    Countdown start(kThreads), begun(kThreads * kLines);
    bool done = false;
    const auto writeLines = [&] {
        start.countDown();
        start.wait();
        std::string text = "text\n";
        for (int i = 0; i < kLines; ++i) {
            traceLine(kTraceDetail, 4095, Pause{begun, done}, true);
            KalvorTrace(text, kTraceDetail);
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    while (threads.size() < kThreads)
        threads.emplace_back(writeLines);
    for (std::thread &thread : threads)
        thread.join();
    traceLine(kv::detail::kTraceSystem, "off");
    EXPECT_EQ(trace.stream.flags(), flags);
    std::map<std::string, int> count;
    std::istringstream lines(trace.Take());
    for (std::string line; std::getline(lines, line);)
        ++count[line];
    EXPECT_EQ(count, (std::map<std::string, int>{{"module KvBaseTrac : 4095 - 1", kThreads * kLines},
                                                 {"module KvBaseTrac : text", kThreads * kLines}}));
}

TEST(TraceLine, DisconnectingWaitsForTheLineThatIsBeingWritten) {
    Countdown begun(1);
    bool done = false;
    std::thread other;
    {
        TraceCapture trace(kTraceDetail);
        other = std::thread([&] { traceLine(kTraceDetail, Pause{begun, done}); });
        begun.wait();
    }  // disconnects, then destroys the stream
    EXPECT_TRUE(done);
    other.join();
}

TEST(TraceLine, StreamThatGoesWhileALineWaitsForTheLockGetsNothing) {
    for (int i = 0; i < 50; ++i) {
        TraceCapture trace(kTraceDetail);
        Countdown begun(1);
        KV_Synch lock(KV_Tracer::GetMutex());
        std::thread other([&] {
            begun.countDown();
            traceLine(kTraceDetail, "late");
        });
        begun.wait();
        for (int k = 0; k < 100; ++k)
            std::this_thread::yield();
        KV_Tracer::SetStreamP("KvBaseTrace", nullptr);
        lock.Reset();
        other.join();
        EXPECT_EQ(trace.Take(), "");
    }
}

TEST(FuncStrmbuf, HandsOnBlocks) {
    const auto handOn = [](int blockSize, const std::string &text, bool isGood) {
        Pieces pieces;
        KV_FuncStrmbuf buffer(Pieces::take, &pieces, blockSize);
        std::iostream stream(&buffer);
        stream << text;
        EXPECT_EQ(stream.good(), isGood);
        stream.flush().flush();  // a second flush has nothing to hand on
        EXPECT_EQ(stream.get(), std::char_traits<char>::eof());
        return std::vector<std::string>(pieces);
    };
    using List = std::vector<std::string>;
    const std::string text(300, 'x');
    EXPECT_EQ(handOn(256, text, true), (List{text.substr(0, 253), text.substr(253)}));
    EXPECT_EQ(handOn(256, text.substr(0, 253), true), List{text.substr(0, 253)});
    EXPECT_EQ(handOn(4, "abc", true), (List{"a", "b", "c"}));
    for (int noRoom : {-1, 0, 3})
        EXPECT_EQ(handOn(noRoom, "abc", false), List());
    KV_FuncStrmbuf room(nullptr, nullptr, 4);  // for one character
    EXPECT_EQ(room.sputc('a'), 0);
    EXPECT_EQ(room.sputc('b'), 0) << "a full block";
}

// A trace file whose every write reports a failure of its own to the trace, as a full disk would.
void failingFile(void *user, const char *text, int count) noexcept {
    traceLine(kv::detail::kTraceError, "disk is full");
    static_cast<std::string *>(user)->append(text, static_cast<std::size_t>(count));
}

TEST(TraceSink, DropsUntilStartedThenGoesToTheFileOrToStandardOutput) {
    std::ostringstream output;
    std::streambuf *former = std::cout.rdbuf(output.rdbuf());
    std::string file, pending = "pending";
    const std::string longText(300, 'x');
    KV_Tracer::SetTracing("KvBaseTrace", 0x011);
    traceLine(kTraceDetail, "dropped");
    kv::detail::setTracingStarted();
    traceLine(kTraceDetail, "to output");
    kv::detail::setTraceFile(failingFile, &file);
    EXPECT_TRUE(kv::detail::traceFileIsSet());
    traceLine(kTraceDetail, longText);
    traceLine(kTraceDetail, "again");
    KalvorTrace(pending, 0x001);
    kv::detail::setTraceFile(nullptr, nullptr);  // the file gets its pending text first
    traceLine(kTraceDetail, "to output again");
    KV_Tracer::SetTracing("KvBaseTrace", 0);
    std::cout.rdbuf(former);
    EXPECT_EQ(output.str(), "module KvBaseTrac : to output\nmodule KvBaseTrac : to output again\n");
    EXPECT_EQ(file, "module KvBaseTrac : " + longText +
                        "\nmodule KvBaseTrac : again\n"
                        "*** ERROR *** : module KvBaseTrac : pending");
}

TEST(TraceSink, GoesOnWhenStandardOutputHasThrown) {
    struct : std::streambuf {
    } full;  // takes nothing
    std::ostringstream output;
    std::streambuf *former = std::cout.rdbuf(&full);
    kv::detail::setTracingStarted();
    KV_Tracer::SetTracing("KvBaseTrace", kTraceDetail);
    std::cout.exceptions(std::ios::badbit);
    traceLine(kTraceDetail, "lost");
    std::cout.exceptions(std::ios::goodbit);
    std::cout.clear();
    std::cout.rdbuf(output.rdbuf());
    traceLine(kTraceDetail, "here");
    KV_Tracer::SetTracing("KvBaseTrace", 0);
    std::cout.rdbuf(former);
    EXPECT_EQ(output.str(), "module KvBaseTrac : here\n");
}

#if !defined(_WIN32)
// Runs when all static objects are gone, dout too. MinGW-w64 runs such functions before them.
__attribute__((destructor)) void traceAtTheVeryEnd() {
    if (kv::detail::traceIsOn(kTraceDetail) || earlyTracer->IsOn(0x1)) std::abort();
}

TEST(TraceSink, TracersAreOffOnceTheTraceStreamIsGone) {
    KV_Tracer::SetTracing("KvBaseTrace", kTraceDetail);
    EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0), "");
    KV_Tracer::SetTracing("KvBaseTrace", 0);
}
#endif

}  // namespace
