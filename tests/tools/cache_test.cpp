// The commands of kvtool for link files, run as a user does.
#include <kvbase/runtime/kv_platform_facts.h>

#include "../modules/profile_module/profile_file.h"
#include "run_tool.h"

namespace {

class KvToolCache : public ToolTest {
protected:
    void SetUp() override {
        ToolTest::SetUp();
        fs::create_directory("links");
        const std::string version = std::string("Kalvor Version  : ") + KV_KalvorVersion();
        write("links/other.icc", "stays");
        write("links/templink_AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA.icc", bytesOf({version, KV_CheckSum(), {}}));
        write("links/templink_cut.icc", "x");
        const std::string module = fs::path(KVBASE_PROFILE_MODULE).replace_extension().filename().string();
        write("good.krg", "<< /Components << /ProfileModule (" + module + ") >> >>");
        write("bare.krg", "<< /Components << /ProfileModule (no_such_module) >> >>");
        write("broken.krg", "<< /Components (@{x) >>");
        fs::copy_file(pathFromUtf8(KVBASE_PROFILE_MODULE),
                      file(fs::path(KVBASE_PROFILE_MODULE).filename().string()));
    }
};

TEST_F(KvToolCache, ListsAndRemovesLinkFilesAlone) {
    const Row rows[] = {
        {"cache list links", 0, "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\t", ""},
        {"cache purge-old links --registry bare.krg", 1, "", "nothing is removed"},
        {"cache purge-old links --registry none.krg", 1, "", "none.krg"},
        {"cache purge-old links --registry broken.krg", 1, "", "broken.krg: nothing is removed"},
        {"cache purge-old links", 2, "", "--registry"},
        {"cache purge-old links --registry good.krg", 0, "1 link files removed, 1 left\n", ""},
        {"cache clean links", 0, "1 link files removed, 0 left\n", ""},
        {"cache clean links", 0, "0 link files removed, 0 left\n", ""},
        {"cache list links", 0, "checksum\tbytes\twritten (UTC)\tfile\n", ""},
        {"cache clean none", 1, "", "none: doesn't exist"},
        {"cache list good.krg", 1, "", "good.krg: is no folder"},
        {"cache", 2, "", "subcommand"},
    };
    expectOutcomes(rows);
    EXPECT_EQ(contents(file("links/other.icc")), "stays");
    EXPECT_FALSE(fs::exists(file("none")));
}

}  // namespace
