#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "platform/platform.h"
#include "platform/wildcard.h"
#include "system.h"
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
        if (kOnWindows) return;
        fs::create_symlink("nowhere", m_folder / "link");
        for (const char *untold : {"back\\slash", "no UTF-8 \xFF"})  // no path of the library leads there
            std::ofstream(m_folder / untold) << "x";
    }

    KV_WString at(const KV_WString &name) const {
        return platform::fromNativePath(m_folder.native() + "/") + name;
    }

    TempFolder m_folder;
};

TEST_F(PlatformFiles, FindsByPatternInOrder) {
    using Names = std::vector<KV_WString>;
    const KV_WString accented = KV_W("\u00E9\U0001F600.txt");
    const auto here = [](const Names &posix, const Names &windows) { return kOnWindows ? windows : posix; };
    const struct {
        const char *name;
        KV_WString pattern;
        Names found;
    } kCases[] = {
        {"case counts on POSIX", KV_W("*.icc"),
         here({KV_W("a.icc"), KV_W("b.icc")}, {KV_W("Z.ICC"), KV_W("a.icc"), KV_W("b.icc")})},
        {"one unit", KV_W("?.icc"),
         here({KV_W("a.icc"), KV_W("b.icc")}, {KV_W("Z.ICC"), KV_W("a.icc"), KV_W("b.icc")})},
        {"a pair is two units", KV_W("\u00E9??.txt"), {accented}},
        {"all, by units", KV_W("*"),
         here({KV_W(".hidden"), KV_W("Z.ICC"), KV_W("a.icc"), KV_W("b.icc"), KV_W("dir"), KV_W("link"),
               KV_W("plain"), accented},
              {KV_W(".hidden"), KV_W("Z.ICC"), KV_W("a.icc"), KV_W("b.icc"), KV_W("dir"), KV_W("plain"),
               accented})},
        {"extension left out", KV_W("plai?.*"), {KV_W("plain")}},
        {"plain name in another case", KV_W("PLAIN"), here({}, {KV_W("plain")})},
        {"in a folder", KV_W("dir\\*"), {KV_W("inner")}},
        {"dots apart", KV_W("dir\\inner\\*"), {}},
        {"wild folder", KV_W("d*\\inner"), {}},
        {"link that leads nowhere", KV_W("link"), here({KV_W("link")}, {})},
        {"name with a separator of ours", KV_W("back*"), {}},
        {"missing folder", KV_W("none\\*"), {}},
        {"file for a folder", KV_W("plain\\*"), {}},
        {"separator at the end", KV_W("dir\\"), {}},
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
    // On Windows an open file stays.
    EXPECT_EQ(platform::deleteFile(at(KV_W("a.icc"))), !kOnWindows);
    std::fclose(file);

    EXPECT_TRUE(platform::deleteFile(at(KV_W("b.icc"))));
    EXPECT_FALSE(platform::deleteFile(at(KV_W("b.icc"))));
    EXPECT_FALSE(platform::deleteFile(at(KV_W("dir\\inner"))));
    const struct {
        const char *name;
        KV_WString path;
        std::int32_t error;
        const char *mode = "rb";
    } kFailures[] = {{"gone", at(KV_W("b.icc")), ENOENT},
                     {"a directory", at(KV_W("dir")), kOnWindows ? EACCES : EISDIR},
                     {"a zero unit", at(KV_WString(KV_W("plain\0x"), 7)), EINVAL},
                     {"no mode", at(KV_W("plain")), EINVAL, ""},
                     {"unknown mode", at(KV_W("plain")), EINVAL, "b"}};
    for (const auto &c : kFailures) {
        EXPECT_EQ(platform::openFile(c.path, c.mode, error), nullptr) << c.name;
        EXPECT_EQ(error, c.error) << c.name;
    }
}

TEST_F(PlatformFiles, RenamesOverAndMakesFolders) {
    using Outcome = platform::DirectoryOutcome;
    EXPECT_TRUE(platform::renameFile(at(KV_W("plain")), at(KV_W("b.icc"))));
    EXPECT_FALSE(platform::pathExists(at(KV_W("plain"))));
    EXPECT_FALSE(platform::renameFile(at(KV_W("plain")), at(KV_W("b.icc"))));
    EXPECT_TRUE(platform::pathExists(at(KV_W("b.icc"))));
    const struct {
        KV_WString path;
        Outcome outcome;
    } kCases[] = {{KV_W("new"), Outcome::made},         {KV_W("new"), Outcome::exists},
                  {KV_W("b.icc"), Outcome::exists},     {KV_W("none\\new"), Outcome::pathNotFound},
                  {KV_W("new\\\u00E9"), Outcome::made}, {KV_WString(KV_W("a\0b"), 3), Outcome::other}};
    for (const auto &c : kCases)
        EXPECT_EQ(platform::createDirectory(at(c.path)), c.outcome) << platform::nativePath(c.path);
    platform::setNormalAttributes(at(KV_W("new")));  // nothing to see but that it harms nothing
    EXPECT_TRUE(platform::pathExists(at(KV_W("new\\\u00E9"))));
}

// Beyond 260 units the home platform wants another spelling.
TEST_F(PlatformFiles, LongPathsWork) {
    KV_WString path = at(KV_W("dir"));
    for (int i = 0; i < 4; ++i) {
        path += KV_W('\\') + KV_WString(100, KV_W('x'));
        EXPECT_EQ(platform::createDirectory(path), platform::DirectoryOutcome::made);
    }
    std::int32_t error = 0;
    std::FILE *file = platform::openFile(path + KV_W("\\f"), "wb", error);
    ASSERT_NE(file, nullptr) << error;
    std::fclose(file);
    EXPECT_EQ(platform::findNames(path + KV_W("\\*")), std::vector<KV_WString>{KV_W("f")});
    EXPECT_TRUE(platform::renameFile(path + KV_W("\\f"), path + KV_W("\\g")));
    EXPECT_TRUE(platform::deleteFile(path + KV_W("\\g")));
}

TEST(PlatformFolders, AreAbsoluteAndThere) {
    const auto pathOf = [](const KV_WString &path) { return pathFromUtf8(platform::nativePath(path)); };
    for (const KV_WString &folder : {platform::currentFolder(), platform::temporaryFolder()})
        EXPECT_TRUE(pathOf(folder).is_absolute() && fs::is_directory(pathOf(folder)))
            << platform::nativePath(folder);
    EXPECT_EQ(platform::temporaryFolder().back(), KV_W('\\'));
    EXPECT_NE(platform::nativePath(platform::programPath()).find("test_platform"), std::string::npos);
    EXPECT_TRUE(platform::pathExists(platform::programPath()));
    EXPECT_TRUE(pathOf(platform::userDataFolder()).is_absolute());
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
