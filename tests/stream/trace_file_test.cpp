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

void setEnvironment([[maybe_unused]] const char *name, [[maybe_unused]] const std::string &value) {
#if !defined(_WIN32)
    setenv(name, value.c_str(), 1);
#endif
}

// The library's own lines go to the trace stream, and what comes out at the standard output is caught.
// On POSIX the user's folder is a temporary one; on Windows the registry tells it, so the files are removed.
class TraceFile : public ::testing::Test {
protected:
    TraceFile() {
        setEnvironment("APPDATA", m_folder.native());
        KV_Tracer::SetTracing("KvBaseTrace", kTraceDetail);
    }
    ~TraceFile() override {
        KV_Tracer::StopTracing();
        KV_Tracer::SetTracing("KvBaseTrace", 0);
        std::cout.rdbuf(m_former);
        for (const std::string &name : m_names)
            KV_FStream(spec(name)).Remove();
    }

    // Starts with a file name that no other test uses.
    bool start(const std::string &name) {
        m_names.push_back(name);
        return KV_Tracer::StartTracing(true, KV_String(name.c_str()));
    }
    static KV_FileSpec spec(const std::string &name) {
        KV_FileSpec file(kv::platform::userDataFolder());
        file += "Trevane";
        return file += name.c_str();
    }
    static std::string contents(const std::string &name) {
        std::string text;
        EXPECT_TRUE(KV_FStream(spec(name)).ReadFile(text, false));
        EXPECT_EQ(std::erase(text, '\r') != 0, kOnWindows) << "a text file";
        return text;
    }
    std::string takeOutput() {
        std::string text = m_output.str();
        m_output.str("");
        return text;
    }

    TempFolder m_folder;

private:
    std::vector<std::string> m_names;
    std::ostringstream m_output;
    std::streambuf *m_former = std::cout.rdbuf(m_output.rdbuf());
};

// Whether the text is a whole trace file of these lines, begun and ended between the two times.
bool isTraceFile(const std::string &text, const std::string &lines, std::time_t from, std::time_t to) {
    for (std::time_t begin = from; begin <= to; ++begin)
        for (std::time_t end = begin; end <= to; ++end) {
            std::string expected = "Kalvor Log File\n\n" + std::string(std::ctime(&begin)) + "\n" + lines;
            expected += "Logging finished\n" + std::string(std::ctime(&end)) + "\n";
            if (text == expected) return true;
        }
    return false;
}

TEST_F(TraceFile, HoldsTheLinesBetweenTwoBanners) {
    traceLine(kTraceDetail, "dropped");
    dout << "dropped, too\n";
    EXPECT_FALSE(KV_Tracer::StartTracing(false, "trace_no_file.txt"));
    EXPECT_FALSE(spec("trace_no_file.txt").FileExists());
    traceLine(kTraceDetail, "to output");
    const std::time_t from = std::time(nullptr);
    ASSERT_TRUE(start("trace_first.txt"));
    traceLine(kTraceDetail, "one");
    EXPECT_FALSE(start("trace_second.txt"));
    EXPECT_FALSE(spec("trace_second.txt").FileExists());
    EXPECT_NE(contents("trace_first.txt").find("\nmodule KvBaseTrac : one\n"), std::string::npos)
        << "each line is flushed";
    dout << "unflushed\n";
    KV_Tracer::StopTracing();
    const std::time_t to = std::time(nullptr);
    traceLine(kTraceDetail, "to output again");
    KV_Tracer::StopTracing();
    const std::string text = contents("trace_first.txt");
    EXPECT_TRUE(isTraceFile(text, "module KvBaseTrac : one\nunflushed\n", from, to)) << text;
    EXPECT_EQ(takeOutput(), "module KvBaseTrac : to output\nmodule KvBaseTrac : to output again\n");
    ASSERT_TRUE(start("trace_first.txt"));
    EXPECT_EQ(contents("trace_first.txt").find("one"), std::string::npos) << "replaced";
}

TEST_F(TraceFile, ThatCannotBeOpenedLeavesTheStandardOutput) {
    EXPECT_FALSE(start("no_such_folder\\trace.txt"));
    traceLine(kTraceDetail, "line");
    EXPECT_EQ(takeOutput(), "module KvBaseTrac : line\n");
}

#if !defined(_WIN32)
TEST_F(TraceFile, GoesWhereTheEnvironmentSays) {
    const std::string home = m_folder.native();
    for (const char *unset : {"APPDATA", "XDG_DATA_HOME"})
        setEnvironment(unset, "");
    setEnvironment("HOME", home);
    ASSERT_TRUE(start("trace.txt")) << "the folders of a new account are made";
    KV_Tracer::StopTracing();
    EXPECT_TRUE(
        KV_FileSpecFromNative(KV_String((home + "/.local/share/Trevane/trace.txt").c_str())).FileExists());
    setEnvironment("HOME", "");
    const KV_FileSpec plain = KV_FileSpecFromNative(KV_String((home + "/plain.txt").c_str()));
    ASSERT_TRUE(KV_Tracer::StartTracing(true, plain.GetFileName()));
    EXPECT_TRUE(plain.FileExists()) << "without such a folder, the name as it is";
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
    std::istringstream lines(all + takeOutput());
    std::map<std::string, int> count;
    for (std::string line; std::getline(lines, line);)
        ++count[line];
    EXPECT_EQ(count["module KvBaseTrac : " + longText], written);
    EXPECT_EQ(count["Logging finished"], kFiles);
    EXPECT_LE(count.size(), 4u + 2 * kFiles) << "nothing but lines, banners and times";
}

}  // namespace
