#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "platform/platform.h"
#include "platform/wildcard.h"
#include "temp_folder.h"

namespace fs = std::filesystem;
namespace platform = kv::platform;

namespace {

// A folder with a few entries.
class PlatformFiles : public ::testing::Test {
protected:
    PlatformFiles() {
        for (const char *file : {"b.icc", "a.icc", "Z.ICC", "plain", ".hidden"})
            std::ofstream(m_folder / file, std::ios::binary) << "0123456789";
        std::ofstream(m_folder / u8"\u00E9\U0001F600.txt") << "x";
        fs::create_directories(m_folder / "dir/inner");
        fs::create_symlink("nowhere", m_folder / "link");
    }

    KV_WString at(const KV_WString &name) const {
        return platform::fromNativePath(m_folder.native() + "/") + name;
    }

    TempFolder m_folder;
};

TEST_F(PlatformFiles, FindsByPatternInOrder) {
    const struct {
        const char *name;
        KV_WString pattern;
        std::vector<KV_WString> found;
    } kCases[] = {
        {"case counts", KV_W("*.icc"), {KV_W("a.icc"), KV_W("b.icc")}},
        {"one unit", KV_W("?.icc"), {KV_W("a.icc"), KV_W("b.icc")}},
        {"a pair is two units", KV_W("\u00E9??.txt"), {KV_W("\u00E9\U0001F600.txt")}},
        {"all, by units",
         KV_W("*"),
         {KV_W(".hidden"), KV_W("Z.ICC"), KV_W("a.icc"), KV_W("b.icc"), KV_W("dir"), KV_W("link"),
          KV_W("plain"), KV_W("\u00E9\U0001F600.txt")}},
        {"extension left out", KV_W("plai?.*"), {KV_W("plain")}},
        {"plain name missing", KV_W("PLAIN"), {}},
        {"in a folder", KV_W("dir\\*"), {KV_W("inner")}},
        {"dots apart", KV_W("dir\\inner\\*"), {}},
        {"wild folder", KV_W("d*\\inner"), {}},
        {"link that leads nowhere", KV_W("link"), {KV_W("link")}},
        {"missing folder", KV_W("none\\*"), {}},
        {"zero unit", KV_WString(KV_W("plain\0x"), 7), {}},
    };
    for (const auto &c : kCases) {
        EXPECT_EQ(platform::findNames(at(c.pattern)), c.found) << c.name;
        EXPECT_EQ(platform::pathExists(at(c.pattern)), !c.found.empty()) << c.name;
    }
    EXPECT_EQ(platform::findNames(at(KV_W("*.*"))), platform::findNames(at(KV_W("*"))));
    EXPECT_FALSE(platform::pathExists(KV_W("")));
}

TEST_F(PlatformFiles, OpensSeeksAndDeletes) {
    std::int32_t error = -1;
    std::FILE *file = platform::openFile(at(KV_W("a.icc")), "rb+", error);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(error, 0);
    constexpr std::int64_t kFar = 5'000'000'000;  // beyond 32 bits; the file stays a hole
    EXPECT_TRUE(platform::seekFile(file, -3, SEEK_END));
    EXPECT_EQ(std::fgetc(file), '7');
    EXPECT_TRUE(platform::seekFile(file, kFar, SEEK_SET));
    EXPECT_EQ(platform::tellFile(file), kFar);
    EXPECT_FALSE(platform::seekFile(file, -1, SEEK_SET));
    std::fclose(file);

    EXPECT_TRUE(platform::deleteFile(at(KV_W("a.icc"))));
    EXPECT_FALSE(platform::deleteFile(at(KV_W("a.icc"))));
    EXPECT_FALSE(platform::deleteFile(at(KV_W("dir\\inner"))));
    const struct {
        const char *name;
        KV_WString path;
        std::int32_t error;
        const char *mode = "rb";
    } kFailures[] = {{"gone", at(KV_W("a.icc")), ENOENT},
                     {"a directory", at(KV_W("dir")), EISDIR},
                     {"a zero unit", at(KV_WString(KV_W("plain\0x"), 7)), EINVAL},
                     {"no mode", at(KV_W("plain")), EINVAL, ""},
                     {"unknown mode", at(KV_W("plain")), EINVAL, "b"}};
    for (const auto &c : kFailures) {
        EXPECT_EQ(platform::openFile(c.path, c.mode, error), nullptr) << c.name;
        EXPECT_EQ(error, c.error) << c.name;
    }
}

TEST(Wildcards, Match) {
    const struct {
        const char *pattern, *name;
        bool match;
    } kCases[] = {{"a*b*c", "aXbXbXc", true}, {"a*b*c", "acb", false},    {"*", "", true},
                  {"", "a", false},           {"?", "", false},           {"**?", "ab", true},
                  {"*ab", "aab", true},       {"a.*", "a", true},         {"a.*", "ab", false},
                  {".*", "a", false},         {"*.*.icc", "a.icc", false}};
    const auto wide = [](const char *text) { return platform::fromNativePath(text); };
    for (const auto &c : kCases)
        EXPECT_EQ(kv::detail::matchesWildcards(wide(c.pattern), wide(c.name)), c.match)
            << c.pattern << " on " << c.name;
    // Backtracking stays a product of the lengths.
    KV_WString stars;
    for (int i = 0; i < 200; ++i)
        stars += KV_W("*a");
    EXPECT_FALSE(kv::detail::matchesWildcards(stars, KV_WString(20000, KV_W('a')) + KV_W("b")));
}

}  // namespace
