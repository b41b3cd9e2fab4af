#include <gtest/gtest.h>
#include <kvbase/runtime/kv_url.h>

#include "runtime/trace_capture.h"

namespace {

std::string pathOf(const char *url) { return std::string(KV_URL(KV_String(url)).GetUNCPath().GetFileName()); }

TEST(Url, PathsGoThereAndBack) {
    struct PathCase {
        const char *name, *path, *url, *back;
    };
    const PathCase paths[] = {
        {"drive and blanks", "D:\\a b\\c  d.icc", "file:D:/a%20b/c%20%20d.icc", "D:\\a b\\c  d.icc"},
        {"server", "\\\\server\\share\\x", "file://server/share/x", "\\\\server\\share\\x"},
        {"signs of other URLs", "100%#?&.icc", "file:100%#?&.icc", "100%#?&.icc"},
        {"beyond ASCII", "M\xC3\xBCller\\\xE2\x82\xAC", "file:M\xC3\xBCller/\xE2\x82\xAC",
         "M\xC3\xBCller\\\xE2\x82\xAC"},
        {"scheme within", "file:a", "file:file:a", "file:a"},
        {"slash of its own", "a/b", "file:a/b", "a\\b"},
        {"escape of its own", "a%20b", "file:a%20b", "a b"},
    };
    for (const PathCase &c : paths) {
        KV_URL url{KV_FileSpec(KV_String(c.path))};
        EXPECT_STREQ(url.GetURL(), c.url) << c.name;
        EXPECT_STREQ(url.GetUNCPath().GetFileName(), c.back) << c.name;
    }
}

TEST(Url, AnyTextGivesAPath) {
    const char *texts[][2] = {
        {"a/b", "a\\b"},
        {"http://host/a%20b", "http:\\\\host\\a b"},
        {"a/file:b", "a\\file:b"},
        {"file", "file"},
        {"a%2", "a%2"},
        {"%2%20%", "%2 %"},
        {"%2520", "%2520"},
    };
    for (const auto &text : texts) {
        EXPECT_EQ(pathOf(text[0]), text[1]) << text[0];
        EXPECT_STREQ(KV_URL(KV_String(text[0])).GetURL(), text[0]);
    }
    EXPECT_EQ(KV_URL(KV_String("file:a\0b", 8)).GetUNCPath().GetFileNameW(), KV_WString(KV_W("a\0b"), 3));
}

TEST(Url, EmptyPathIsReported) {
    TraceCapture trace(0x001);
    KV_URL url{KV_FileSpec()};
    EXPECT_STREQ(url.GetURL(), "file:");
    EXPECT_NE(trace.Take(), "");
    EXPECT_FALSE(url.GetUNCPath().IsValid());
}

TEST(Url, NetworksAreNotOffered) {
    KV_URL url(KV_String("file:a"));
    KV_FileSpec spec(KV_W("kept"));
    EXPECT_FALSE(url.GetFileSpec(spec));
    EXPECT_EQ(spec, KV_FileSpec(KV_W("kept")));
    EXPECT_STREQ(KV_URL::GetHostName(), "localhost");
    EXPECT_TRUE(url.GetSambaURL().IsEmpty());
}

}  // namespace
