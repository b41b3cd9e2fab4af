// Link files: when they are written and read, what removes them, and two processes in one folder.
#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_platform_facts.h>

#include <algorithm>
#include <cstdlib>
#include <future>
#include <iostream>
#include <sstream>
#include <vector>

#include "../modules/profile_module/profile_file.h"
#include "profile_host.h"

namespace fs = std::filesystem;

namespace {

class LinkFiles : public testing::Test {
protected:
    LinkFiles() {
        cacher().SetCachingMethod(KV_CACHING_FILES);
        host.manager().SetCachingPath(host.cachingPath("a\\b\\links"));
    }
    void TearDown() override {
        cacher().RemoveMemCache();
        EXPECT_EQ(host.manager().TotalUseCount(), 0U);
    }
    KV_Cacher &cacher() { return host.cacher(); }
    fs::path folder() const { return host.folder() / "a" / "b" / "links"; }
    fs::path linkFile(std::uint32_t number) const {
        return folder() / ("templink_" + sumOf(number).GetSum() + ".icc");
    }
    void store(std::uint32_t number, KV_CachingMethod method = KV_CACHING_AS_SET) {
        KV_CheckSum sum = sumOf(number);
        cacher().SetLink(&sum, host.builder(sum).get(), false, method);
    }
    // What GetLinkCore gives to a first caller.
    Ref<ITestLink> fetched(std::uint32_t number) {
        KV_CheckSum sum = sumOf(number);
        KV_ILinkCore *link = nullptr;
        cacher().GetLinkCore(&sum, 1, link, false, 0);
        cacher().UnRegister(&sum, 1, false);
        return testLink(link);
    }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    void write(const char *name, const std::string &bytes) const {
        std::ofstream(folder() / name, std::ios::binary) << bytes;
    }

    ProfileHost host;
};

std::string bytesIn(const fs::path &file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

TEST_F(LinkFiles, AreWrittenOnceAndReadIntoMemory) {
    EXPECT_EQ(host.manager().GetCachingPath()->GetFileNameW(),
              host.cachingPath("a\\b\\links").GetFileNameW());
    KV_CheckSum sum = sumOf(1);
    EXPECT_TRUE(cacher().GetLinkFilePath(&sum).empty());
    store(1);
    ASSERT_EQ(names(), std::vector<std::string>{linkFile(1).filename().string()}) << "and no temporary one";
    EXPECT_EQ(pathFromUtf8(std::string(KV_NativePath(cacher().GetLinkFilePath(&sum)))), linkFile(1));
    cacher().RemoveMemCache();
    ASSERT_FALSE(cacher().InMemCache(&sum));
    const Ref<ITestLink> read = fetched(1);
    ASSERT_TRUE(read);
    ASSERT_EQ(read->Values().size(), kTestLinkValues);
    for (std::size_t i = 0; i < kTestLinkValues; ++i)
        ASSERT_EQ(read->Values()[i], testLinkValue(sum, i)) << i;
    EXPECT_TRUE(cacher().InMemCache(&sum));
    EXPECT_FALSE(fetched(2)) << "neither in memory nor on disk";

    std::ofstream(linkFile(1), std::ios::binary) << "kept";
    store(1);
    EXPECT_EQ(bytesIn(linkFile(1)), "kept") << "what exists is not written again";
    cacher().SetCachingMethod(KV_CACHING_MEMORY);
    EXPECT_TRUE(cacher().GetLinkFilePath(&sum).empty());
    store(1, KV_CACHING_FILES);
    EXPECT_NE(bytesIn(linkFile(1)), "kept") << "unless it is asked for while links stay in memory";
    store(3);
    cacher().SetLinkCore(&sum, host.link(1).get(), false, 0, KV_CACHING_FILES);
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(LinkFiles, ThatAreBadRaiseAndThoseThatFailAreNotThere) {
    KV_CheckSum sum = sumOf(1);
    for (const std::size_t bytes : {std::size_t{0}, std::size_t{1500}}) {
        const Ref<ITestMatcher> matcher = host.builder(sum);
        matcher->SavedProfile().FailAt(bytes);
        cacher().SetLink(&sum, matcher.get(), false, KV_CACHING_AS_SET);
        EXPECT_TRUE(names().empty()) << "the disk is full after " << bytes;
        EXPECT_TRUE(cacher().InMemCache(&sum));
    }
    std::ofstream(linkFile(2)) << "not a profile";
    KV_CheckSum bad = sumOf(2);
    KV_ILinkCore *link = nullptr;
    EXPECT_THROW(cacher().GetLinkCore(&bad, 1, link, false, 0), KV_ProfileException);
    cacher().UnRegister(&bad, 1, false);

    fs::create_directories(linkFile(5) / "in the way");  // nothing can be renamed to that
    store(5);
    EXPECT_EQ(names().size(), 2U) << "no temporary file is left";
    fs::remove_all(linkFile(5));

    std::ofstream(host.folder() / "file") << "in the way of a folder";
    host.manager().SetCachingPath(host.cachingPath("file\\links"));
    store(3);
    KV_CheckSum third = sumOf(3);
    EXPECT_TRUE(cacher().InMemCache(&third)) << "no folder, no file, and nothing raised";
    host.manager().SetCachingPath(specOf(host.folder().native("beside")));
    store(4);
    EXPECT_TRUE(fs::exists(host.folder() / ("besidetemplink_" + sumOf(4).GetSum() + ".icc")));
}

TEST_F(LinkFiles, OldAndBadOnesGo) {
    const std::string version = KV_KalvorVersion();
    struct {
        const char *name;
        std::string text;  // of the text tag
        bool isKept;
    } const rows[] = {
        {"templink_this.icc", "Kalvor Version  : " + version, true},
        {"templink_long", "by Kalvor Version ..." + version + " and more", true},
        {"templink_older.icc", "Kalvor Version  : 0.0.0.1", false},
        {"templink_short.icc", "Kalvor Version  : " + version.substr(1), false},
        {"templink_ends.icc", "Kalvor Version", false},
        {"templink_other.icc", "Another Version  : " + version, false},
        {"templink_silent.icc", "", false},
        {"kept.icc", "Kalvor Version  : 0.0.0.1", true},
        {"mytemplink_.icc", "", true},
    };
    for (const auto &row : rows)
        write(row.name, bytesOf({row.text, sumOf(1), {1}}));
    write("templink_cut.icc", bytesOf({"Kalvor Version  : " + version, sumOf(1), {1}}).substr(0, 60));
    write("templink_empty.icc", "");
    fs::create_directory(folder() / "templink_folder");
    host.manager().RemoveOldLinks();
    std::vector<std::string> expected{"templink_folder"};
    for (const auto &row : rows)
        if (row.isKept) expected.emplace_back(row.name);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(names(), expected);
    fs::remove(folder() / "templink_folder");
    host.manager().RemoveFileCache();
    EXPECT_EQ(names(), (std::vector<std::string>{"kept.icc", "mytemplink_.icc"}));
}

// Two processes build, read and remove at once; each checks all that it reads.
TEST_F(LinkFiles, AreSharedByTwoProcesses) {
    write("foreign.icc", "foreign");
    write("templin", "foreign, too");
    const auto work = [this](int seed) {
        const fs::path out = host.folder() / ("out" + std::to_string(seed) + ".txt");
        const std::string command = "cd . && \"" + fs::path(KVBASE_LINK_WORKER).make_preferred().string() +
                                    "\" \"" + host.folder().native("a/b/links") + "\" " +
                                    std::to_string(seed) + " >\"" + out.string() + '"';
        const int status = std::system(command.c_str());
        return std::to_string(status) + ": " + bytesIn(out);
    };
    auto first = std::async(std::launch::async, work, 1);
    const std::string second = work(2);
    for (const std::string &report : {first.get(), second}) {
        EXPECT_EQ(report.rfind("0: ", 0), 0U) << report;
        std::cout << report;
    }
    EXPECT_EQ(bytesIn(folder() / "foreign.icc"), "foreign");
    EXPECT_EQ(bytesIn(folder() / "templin"), "foreign, too");
    host.manager().RemoveFileCache();
    EXPECT_EQ(names().size(), 2U);
}

}  // namespace
