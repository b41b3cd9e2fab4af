#include <gtest/gtest.h>
#include <kvbase/runtime/kv_tracer.h>
#include <kvbase/stream/kv_fstream.h>

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <map>
#include <sstream>
#include <thread>
#include <vector>

#include "platform/platform.h"
#include "runtime/trace_line.h"
#include "system.h"
#include "temp_folder.h"

namespace {

using kv::detail::kTraceDetail;
using kv::detail::traceLine;

// The library's own lines go to the trace stream, and the standard output is caught. On POSIX the user's
// folder is a temporary one, told by the environment; on Windows the registry tells it, which no test
// changes, so the files are removed from there.
class TraceFile : public ::testing::Test {
protected:
    TraceFile() {
        setVariable("APPDATA", m_folder.native());
        KV_Tracer::SetTracing("KvBaseTrace", kTraceDetail);
    }
    ~TraceFile() override {
        KV_Tracer::StopTracing();
        KV_Tracer::SetTracing("KvBaseTrace", 0);
        std::cout.rdbuf(m_former);
        for (const std::string &name : m_names)
            KV_FStream(spec(name)).Remove();
    }

    static void setVariable([[maybe_unused]] const char *name, [[maybe_unused]] const std::string &value) {
#if !defined(_WIN32)
        setenv(name, value.c_str(), 1);
#endif
    }
    bool start(const std::string &name) {
        m_names.push_back(name);
        return KV_Tracer::StartTracing(true, KV_String(name.c_str()));
    }
    static KV_FileSpec spec(const std::string &name) {
        KV_FileSpec file(kv::platform::userDataFolder());
        return file += ("Trevane\\" + name).c_str();
    }
    static std::string contents(const std::string &name) {
        std::string text;
        EXPECT_TRUE(KV_FStream(spec(name)).ReadFile(text, false));
        EXPECT_EQ(std::erase(text, '\r') != 0, kOnWindows) << "a text file";
        return text;
    }

    TempFolder m_folder;
    std::ostringstream m_output;

private:
    std::vector<std::string> m_names;
    std::streambuf *m_former = std::cout.rdbuf(m_output.rdbuf());
};

// As the C standard has it. Not every C library of Windows pads the day with a blank; some take a zero.
std::string timeText(std::time_t time) {
    std::string text = std::ctime(&time);
    if (text[8] == '0') text[8] = ' ';
    return text;
}

// Whether the text is a whole trace file of these lines, begun and ended between the two times.
bool isTraceFile(const std::string &text, const std::string &lines, std::time_t from, std::time_t to) {
    for (std::time_t begin = from; begin <= to; ++begin)
        for (std::time_t end = begin; end <= to; ++end) {
            std::ostringstream expected;
            expected << "Kalvor Log File\n\n" << timeText(begin) << '\n' << lines;
            expected << "Logging finished\n" << timeText(end) << '\n';
            if (text == expected.str()) return true;
        }
    return false;
}

TEST_F(TraceFile, HoldsTheLinesBetweenTwoBanners) {
    dout << "dropped";
    EXPECT_FALSE(KV_Tracer::StartTracing(false, "trace_none.txt"));
    traceLine(kTraceDetail, "to output");
    const std::time_t from = std::time(nullptr);
    ASSERT_TRUE(start("trace_first.txt"));
    traceLine(kTraceDetail, "one");
    EXPECT_FALSE(start("trace_none.txt"));
    EXPECT_FALSE(spec("trace_none.txt").FileExists());
    if (kOpenFilesAreShared) {
        EXPECT_NE(contents("trace_first.txt").find("\nmodule KvBaseTrac : one\n"), std::string::npos)
            << "flushed";
    }
    dout << "unflushed\n";
    KV_Tracer::StopTracing();
    const std::time_t to = std::time(nullptr);
    traceLine(kTraceDetail, "to output again");
    KV_Tracer::StopTracing();
    const std::string text = contents("trace_first.txt");
    EXPECT_TRUE(isTraceFile(text, "module KvBaseTrac : one\nunflushed\n", from, to)) << text;
    EXPECT_EQ(m_output.str(), "module KvBaseTrac : to output\nmodule KvBaseTrac : to output again\n");
    ASSERT_TRUE(start("trace_first.txt"));
    KV_Tracer::StopTracing();
    EXPECT_EQ(contents("trace_first.txt").find("one"), std::string::npos) << "replaced";
}

TEST_F(TraceFile, ThatCannotBeOpenedLeavesTheStandardOutput) {
    EXPECT_FALSE(start("no_such_folder\\trace.txt"));
    traceLine(kTraceDetail, "line");
    EXPECT_EQ(m_output.str(), "module KvBaseTrac : line\n");
}

TEST_F(TraceFile, AnyNameFollowsASeparator) {
    EXPECT_TRUE(start("\\trace_first.txt"));
    KV_Tracer::StopTracing();
    EXPECT_TRUE(spec("trace_first.txt").FileExists());
    KV_Tracer::SetTracing("KvBaseTrace", kv::detail::kTraceError);
    EXPECT_FALSE(start("\\no_such_folder\\trace.txt"));
    EXPECT_NE(m_output.str().find("\\Trevane\\\\no_such_folder\\trace.txt "), std::string::npos);
}

#if !defined(_WIN32)
// On Windows the registry says it, and always does.
TEST_F(TraceFile, LiesWhereTheEnvironmentSays) {
    for (const char *unset : {"APPDATA", "XDG_DATA_HOME"})
        setVariable(unset, "");
    setVariable("HOME", m_folder.native());
    EXPECT_TRUE(start("trace.txt"));
    EXPECT_TRUE(std::filesystem::exists(m_folder / ".local/share/Trevane/trace.txt")) << "folders are made";
    KV_Tracer::StopTracing();
    setVariable("HOME", "");
    const std::filesystem::path plain = m_folder / "plain.txt";
    EXPECT_TRUE(KV_Tracer::StartTracing(true, KV_String(plain.c_str())));
    EXPECT_TRUE(std::filesystem::exists(plain)) << "no folder is told: the name as it is";
}
#endif

TEST_F(TraceFile, LinesOfSeveralThreadsComeWholeWhileFilesChange) {
    constexpr int kThreads = 3, kFiles = 8, kLinesAFile = 20;
    const std::string longText(300, 'x');  // more than the trace stream's block
    std::atomic<int> written{0};
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    KV_Tracer::StartTracing(false, KV_String());
    while (threads.size() < kThreads)
        threads.emplace_back([&] {
            for (; !done; ++written)
                traceLine(kTraceDetail, longText);
        });
    std::string all;
    for (int i = 0; i < kFiles; ++i) {
        const std::string name = "trace_" + std::to_string(i) + ".txt";
        EXPECT_TRUE(start(name));
        for (const int enough = written + kLinesAFile; written < enough;)
            std::this_thread::yield();
        KV_Tracer::StopTracing();
        all += contents(name);
    }
    done = true;
    for (std::thread &thread : threads)
        thread.join();
    std::istringstream lines(all + m_output.str());
    std::map<std::string, int> count;
    for (std::string line; std::getline(lines, line);)
        ++count[line];
    EXPECT_EQ(count["module KvBaseTrac : " + longText], written);
    EXPECT_EQ(count["Logging finished"], kFiles);
    EXPECT_LE(count.size(), 4u + 2 * kFiles) << "nothing but lines, banners and times";
}

}  // namespace
