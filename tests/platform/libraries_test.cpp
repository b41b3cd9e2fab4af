#include <gtest/gtest.h>
#include <kvbase/base/export.h>

#include <filesystem>

#include "platform/platform.h"
#include "temp_folder.h"

namespace fs = std::filesystem;
namespace platform = kv::platform;

extern "C" KV_MODULE_EXPORT int exportedByTheProgram() { return 1; }

namespace {

const KV_WString kModule = KV_W("plain_module");

KV_WString programFolder() {
    const KV_WString program = platform::programPath();
    return program.substr(0, program.rfind(KV_W('\\')));
}

int call(platform::Library library) {
    return reinterpret_cast<int (*)()>(platform::findSymbol(library, "plainModuleCall"))();
}

TEST(PlatformLibraries, AreSharedByAllWhoLoadThem) {
    std::int32_t error = -1;
    const platform::Library beside = platform::loadLibrary(kModule, error);
    ASSERT_NE(beside, nullptr) << error;
    EXPECT_EQ(error, 0);
    const platform::Library inFolder = platform::loadLibraryFrom(programFolder(), kModule, error);
    EXPECT_EQ(inFolder, beside) << error;
    EXPECT_EQ(call(beside), 1);
    platform::freeLibrary(inFolder);
    EXPECT_EQ(call(beside), 2) << "loaded twice, given back once";
    EXPECT_EQ(platform::findSymbol(beside, "plainModule"), nullptr);
    platform::freeLibrary(beside);
    platform::freeLibrary(nullptr);
}

TEST(PlatformLibraries, NullIsTheProgramWithoutItsLibraries) {
    EXPECT_EQ(platform::findSymbol(nullptr, "exportedByTheProgram"),
              reinterpret_cast<void *>(&exportedByTheProgram));
    EXPECT_EQ(platform::findSymbol(nullptr, "labs"), nullptr) << "of the C library";
    EXPECT_EQ(platform::findSymbol(nullptr, "exportedByNobody"), nullptr);
}

TEST(PlatformLibraries, FolderGoesFirstAndTheCurrentFolderStays) {
    const TempFolder folder;
    const fs::path file = pathFromUtf8(KVBASE_PLAIN_MODULE);
    fs::copy_file(file, folder / file.filename());
    std::int32_t error = 0;
    const platform::Library beside = platform::loadLibrary(kModule, error);
    const fs::path before = fs::current_path();
    const platform::Library copy =
        platform::loadLibraryFrom(platform::fromNativePath(folder.native()), kModule, error);
    ASSERT_NE(copy, nullptr) << error;
    EXPECT_NE(copy, beside);
    EXPECT_EQ(fs::current_path(), before);
    call(copy);
    EXPECT_EQ(call(copy), 2);
    EXPECT_EQ(call(beside), 1);
    platform::freeLibrary(copy);
    platform::freeLibrary(beside);
}

TEST(PlatformLibraries, MissingOnesHaveANumber) {
    std::int32_t error = 0;
    for (const KV_WString &missing :
         {KV_WString(), KV_WString(KV_W("no_such_module")), programFolder(), KV_WString(KV_W("a\0b"), 3)}) {
        EXPECT_EQ(platform::loadLibrary(missing, error), nullptr);
        EXPECT_NE(error, 0);
    }
    EXPECT_EQ(platform::loadLibraryFrom(programFolder() + KV_W("\\none"), kModule, error), nullptr);
    EXPECT_NE(error, 0);
    EXPECT_EQ(platform::loadLibraryFrom(programFolder(), kModule + KV_WString(2, KV_WChar{0}), error),
              nullptr);
    EXPECT_NE(error, 0);
}

}  // namespace
