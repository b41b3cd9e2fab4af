#include <gtest/gtest.h>

#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/text/kv_system_string.h>

#include <fstream>
#include <functional>
#include <utility>

#include "runtime/trace_capture.h"
#include "temp_folder.h"

namespace {

const KV_WString kKept = KV_W("kept");

TEST(FileSpec, Joins) {
    const struct {
        const char *name, *path, *piece, *joined;
    } kCases[] = {
        {"no separator", "D:\\dir", "x.icc", "D:\\dir\\x.icc"},
        {"one in the path", "D:\\dir\\", "x.icc", "D:\\dir\\x.icc"},
        {"one in the piece", "D:\\dir", "\\x.icc", "D:\\dir\\x.icc"},
        {"both are kept", "D:\\dir\\", "\\x.icc", "D:\\dir\\\\x.icc"},
        {"empty path", "", "x.icc", "x.icc"},
        {"empty piece", "D:\\dir", "", "D:\\dir\\"},
        {"forward slashes separate nothing", "a/", "/b", "a/\\/b"},
    };
    for (const auto &c : kCases) {
        KV_FileSpec narrow(KV_String(c.path)), text = narrow, wide = narrow;
        narrow += c.piece;
        text += KV_String(c.piece);
        wide += KV_FileSpec(KV_String(c.piece)).GetFileNameW();
        EXPECT_STREQ(narrow.GetFileName(), c.joined) << c.name;
        EXPECT_TRUE(text == narrow && wide == narrow) << c.name;
    }
    KV_FileSpec twice(KV_W("ab"));
    twice += twice.GetFileNameW();
    EXPECT_EQ(twice.GetFileNameW(), KV_W("ab\\ab"));
}

TEST(FileSpec, Cuts) {
    const struct {
        KV_WString path, base, full,
            parent;  // kKept where out stays; the narrow forms keep it for an empty text too
    } kCases[] = {
        {KV_W("D:\\a\\b\\c.icc"), KV_W("c.icc"), KV_W("D:\\a\\b"), KV_W("b")},
        {KV_W("c.icc"), KV_W("c.icc"), kKept, kKept},
        {KV_W("D:\\c.icc"), KV_W("c.icc"), KV_W("D:"), KV_W("D:")},
        {KV_W("\\c.icc"), KV_W("c.icc"), KV_W(""), KV_W("")},
        {KV_W("D:\\a\\"), KV_W(""), KV_W("D:\\a"), KV_W("a")},
        {KV_W("D:/a/c.icc"), KV_W("D:/a/c.icc"), kKept, kKept},
        {KV_W("\u00E9\\\U0001F600"), KV_W("\U0001F600"), KV_W("\u00E9"), KV_W("\u00E9")},
    };
    TraceCapture trace(0xFFF);
    for (const auto &c : kCases) {
        const KV_FileSpec file(c.path);
        const auto check = [&file](const KV_WString &expected, auto wideQuery, auto narrowQuery) {
            const bool found = expected != kKept && !expected.empty();
            KV_WString wide = kKept;
            KV_String narrow("kept");
            EXPECT_EQ((file.*wideQuery)(wide), found) << file.GetFileName();
            EXPECT_EQ(wide, expected) << file.GetFileName();
            EXPECT_EQ((file.*narrowQuery)(narrow), found) << file.GetFileName();
            EXPECT_EQ(KV_FileSpec(narrow).GetFileNameW(), found ? expected : kKept) << file.GetFileName();
        };
        using Wide = bool (KV_FileSpec::*)(KV_WString &) const;
        using Narrow = bool (KV_FileSpec::*)(KV_String &) const;
        check(c.base, &KV_FileSpec::GetBaseFileNameW, &KV_FileSpec::GetBaseFileName);
        check(c.full, Wide(&KV_FileSpec::GetFullPathNameW), Narrow(&KV_FileSpec::GetFullPathNameW));
        check(c.parent, &KV_FileSpec::GetParentDirectoryNameW, &KV_FileSpec::GetParentDirectoryName);
    }
    EXPECT_EQ(trace.Take(), "");
}

TEST(FileSpec, ReportsAnEmptyPath) {
    TraceCapture trace(0xFFF);
    const KV_FileSpec none;
    EXPECT_FALSE(none.IsValid() || none.FileExists() || none != KV_FileSpec(KV_String("")));
    EXPECT_EQ(trace.Take(), "");
    KV_WString wide = kKept;
    KV_String narrow("kept");
    const struct {
        const char *line;
        std::function<bool()> query;
    } kCases[] = {
        {"GetFileNameW is called", [&] { return !none.GetFileNameW().empty(); }},
        {"GetFileNameW is called", [&] { return !none.GetFileName().IsEmpty(); }},
        {"GetBaseFileNameW is called", [&] { return none.GetBaseFileNameW(wide); }},
        {"GetBaseFileNameW is called", [&] { return none.GetBaseFileName(narrow); }},
        {"GetParentDirectoryNameW called", [&] { return none.GetParentDirectoryNameW(wide); }},
        {"GetParentDirectoryNameW called", [&] { return none.GetParentDirectoryName(narrow); }},
        {"GetFullPathNameW called", [&] { return none.GetFullPathNameW(wide); }},
        {"GetFullPathNameW called", [&] { return none.GetFullPathNameW(narrow); }},
    };
    for (const auto &c : kCases) {
        EXPECT_FALSE(c.query()) << c.line;
        EXPECT_EQ(trace.Take(), "*** ERROR *** : module KvBaseTrac : !!" + std::string(c.line) +
                                    " but the KV_FileSpec was not set yet!!\n");
    }
    EXPECT_TRUE(wide == kKept && narrow == "kept");
}

TEST(FileSpec, ConvertsNarrowText) {
    EXPECT_EQ(KV_FileSpec(KV_SystemString(KV_String("\xC3\xA9\xFF"))).GetFileNameW(), KV_W("\u00E9\uFFFD"));
    const KV_WString lone(1, KV_WChar(0xD800));
    EXPECT_EQ(KV_FileSpec(lone).GetFileNameW(), lone);
    EXPECT_STREQ(KV_FileSpec(lone).GetFileName(), "\xEF\xBF\xBD");
    const std::string longPath(1000, 'x');
    EXPECT_EQ(KV_FileSpec(KV_String(longPath.c_str())).GetFileName(), longPath.c_str());
    EXPECT_FALSE(KV_FileSpec(KV_W("D:\\a")) == KV_FileSpec(KV_W("d:\\A")));
}

TEST(FileSpec, NativePathsAndExistence) {
    const TempFolder root;
    std::ofstream(root / "a.icc") << "x";
    KV_FileSpec folder = KV_FileSpecFromNative(KV_String(root.native().c_str()));
    EXPECT_EQ(folder.GetFileNameW().find(KV_W('/')), KV_WString::npos);
    EXPECT_STREQ(KV_NativePath(folder), root.native().c_str());
    const std::pair<const char *, bool> kCases[] = {
        {"a.icc", true}, {"b.icc", false}, {"?.icc", true}, {"*.txt", false}, {"", false}};
    EXPECT_TRUE(folder.FileExists());
    for (const auto &[name, exists] : kCases)
        EXPECT_EQ((KV_FileSpec(folder) += name).FileExists(), exists) << name;
}

}  // namespace
