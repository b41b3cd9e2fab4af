#include <gtest/gtest.h>
#include <kvbase/runtime/kv_url.h>

#include "runtime/trace_capture.h"

namespace {

TEST(Url, PathsGoThereAndBack) {
    struct PathCase {
        const char *path, *url, *back;
    };
    const PathCase paths[] = {
        {"D:\\a b\\c  d.icc", "file:D:/a%20b/c%20%20d.icc", "D:\\a b\\c  d.icc"},
        {"\\\\server\\100%#?", "file://server/100%#?", "\\\\server\\100%#?"},
        {"M\xC3\xBCller\\\xE2\x82\xAC", "file:M\xC3\xBCller/\xE2\x82\xAC", "M\xC3\xBCller\\\xE2\x82\xAC"},
        {"file:a", "file:file:a", "file:a"},
        {"a/b", "file:a/b", "a\\b"},
        {"a%20b", "file:a%20b", "a b"},
    };
    for (const PathCase &c : paths) {
        KV_URL url{KV_FileSpec(KV_String(c.path))};
        EXPECT_STREQ(url.GetURL(), c.url);
        EXPECT_STREQ(url.GetUNCPath().GetFileName(), c.back);
    }
}

TEST(Url, AnyTextGivesAPath) {
    const char *texts[][2] = {
        {"a/b", "a\\b"},           {"http://host/a%20b", "http:\\\\host\\a b"},
        {"a/file:b", "a\\file:b"}, {"file", "file"},
        {"%2%20%", "%2 %"},        {"%2520", "%2520"},
        {"file:a%2", "a%2"},
    };
    for (const auto &text : texts) {
        KV_URL url{KV_String(text[0])};
        EXPECT_STREQ(url.GetURL(), text[0]);
        EXPECT_STREQ(url.GetUNCPath().GetFileName(), text[1]);
    }
    EXPECT_EQ(KV_URL(KV_String("file:a\0b", 8)).GetUNCPath().GetFileNameW(), KV_WString(KV_W("a\0b"), 3));
}

TEST(Url, EmptyPathsAndNetworks) {
    TraceCapture trace(0x001);
    KV_URL url{KV_FileSpec()};
    EXPECT_STREQ(url.GetURL(), "file:");
    EXPECT_NE(trace.Take(), "") << "reported";
    KV_FileSpec spec = url.GetUNCPath();
    EXPECT_FALSE(spec.IsValid());
    spec = KV_FileSpec(KV_W("kept"));
    EXPECT_FALSE(url.GetFileSpec(spec));
    EXPECT_EQ(spec, KV_FileSpec(KV_W("kept")));
    EXPECT_STREQ(KV_URL::GetHostName(), "localhost");
    EXPECT_TRUE(url.GetSambaURL().IsEmpty());
}

}  // namespace
