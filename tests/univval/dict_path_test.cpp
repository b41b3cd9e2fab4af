#include "kvbase/univval/kv_dict_path.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

using Keys = std::vector<std::string>;

Keys keysOf(const KV_DictPath &path) {
    Keys keys;
    const char *key = path.NextKey(nullptr);
    for (int i = 0; i < path.Size(); ++i, key = path.NextKey(key))
        keys.emplace_back(key);
    return keys;
}

std::string textOf(const KV_DictPath &path) { return static_cast<KV_String>(path).Ptr(); }

struct PathCase {
    const char *text;
    Keys keys;
    const char *canonical;
};
const PathCase kPaths[] = {
    {"", {}, ""},
    {nullptr, {}, ""},
    {"a", {"a"}, "a:"},
    {"a:b:c", {"a", "b", "c"}, "a:b:c:"},
    {"a:b:c:", {"a", "b", "c"}, "a:b:c:"},
    {":", {""}, ":"},
    {"::a", {"", "", "a"}, "::a:"},
    {"a::", {"a", ""}, "a::"},
    {" a :/b", {" a ", "/b"}, " a :/b:"},
};

TEST(DictPath, BuildsFromText) {
    for (const PathCase &c : kPaths) {
        const KV_DictPath path(c.text), again{KV_String(c.text)};
        EXPECT_EQ(path.Size(), static_cast<int>(c.keys.size()));
        EXPECT_EQ(keysOf(path), c.keys);
        EXPECT_EQ(textOf(path), c.canonical);
        EXPECT_EQ(path, again);
        EXPECT_EQ(keysOf(KV_DictPath(KV_DictPath("x:y"), c.text)).size(), c.keys.size() + 2);
        std::ostringstream stream;
        path.PrintOn(stream);
        EXPECT_EQ(stream.str(), c.canonical);
    }
    EXPECT_EQ(keysOf(KV_String("a\0:b", 4)), Keys{"a"}) << "a text ends at its first zero byte";
}

TEST(DictPath, WalkEndsAtTheEndMarker) {
    KV_DictPath path("a:bc:d");
    const char *last = path.NextKey(path.NextKey(path.NextKey(nullptr)));
    EXPECT_STREQ(last, "d");
    const char *behind = path.NextKey(last);
    EXPECT_STREQ(behind, "");
    EXPECT_EQ(path.NextKey(behind), nullptr);
    EXPECT_EQ(path.NextKey("elsewhere"), nullptr);
    EXPECT_EQ(KV_DictPath().NextKey(nullptr), nullptr);

    --path;
    EXPECT_EQ(path.NextKey(path.NextKey(path.NextKey(nullptr))), last) << "the dropped key";
    EXPECT_EQ(path.NextKey(last), nullptr) << "beyond the marker";
    EXPECT_EQ(&path--, &path);
    --path;
    --path;
    EXPECT_EQ(path.Size(), 0);
    EXPECT_EQ(path.NextKey(nullptr), nullptr);
}

TEST(DictPath, ShortenedPathsCompareAndCopyByTheirKeys) {
    for (const char *text : {"a:b", "a:", "a::", ":", ""}) {
        KV_DictPath path(KV_DictPath(text), "dropped");
        --path;
        const KV_DictPath fresh(text), copy(path);
        KV_DictPath assigned("long enough for a buffer of its own:x");
        assigned = path;
        EXPECT_TRUE(path == fresh && fresh == path && copy == fresh && assigned == fresh) << text;
        EXPECT_EQ(textOf(path), textOf(fresh));
        EXPECT_EQ(keysOf(path + "c:d"), keysOf(fresh + "c:d"));
        EXPECT_EQ(keysOf(path += path), keysOf(fresh + fresh));
    }
    EXPECT_NE(KV_DictPath("a:b"), KV_DictPath("a:c"));
    EXPECT_NE(KV_DictPath(":"), KV_DictPath(""));
}

TEST(DictPath, TakesItsOwnKeys) {
    KV_DictPath path("ab:cd");
    path += path.NextKey(nullptr);
    EXPECT_EQ(textOf(path), "ab:cd:ab:");
    path = path.NextKey(path.NextKey(nullptr));
    EXPECT_EQ(textOf(path), "cd:");
    KV_DictPath taken(std::move(path));
    path = "x";  // what was moved from can be used anew
    EXPECT_EQ(textOf(taken) + textOf(path), "cd:x:");
    path = std::move(taken);
    EXPECT_EQ(keysOf(path + path), (Keys{"cd", "cd"}));
}

TEST(DictPath, KeepsItsKeysWhenTheSeparatorChanges) {
    const KV_DictPath path("a/b:c");
    KV_DictPath::SetSeparator('/');
    KV_DictPath copy(path), other("a/b:c");
    const std::string text = textOf(path);
    KV_DictPath::SetSeparator(':');
    EXPECT_EQ(keysOf(copy += "d/e"), (Keys{"a/b", "c", "d/e"}));
    EXPECT_EQ(text, "a/b/c/");
    EXPECT_EQ(keysOf(other), (Keys{"a", "b:c"}));
}

}  // namespace
