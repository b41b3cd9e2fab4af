#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/runtime/sharelib.h>

#include "platform/platform.h"
#include "temp_folder.h"

namespace fs = std::filesystem;

namespace {

const fs::path kModule = pathFromUtf8(KVBASE_PLAIN_MODULE);
const std::string kExtension = kv::platform::kLibraryExtension;

// The folder of a file in the process's own encoding.
std::string folderOf(const KV_FileSpec &file) {
    KV_WString folder;
    std::string text;
    EXPECT_TRUE(file.GetFullPathNameW(folder));
    kv::platform::fromUnits(kv::platform::kDefaultCodePage, folder, text);
    return text;
}

void load(KV_SharedLib &library, const std::string &name, const std::string &path,
          const KV_FileSpec *neighbour = nullptr) {
    KV_SystemString nameText(name.c_str(), false), pathText(path.c_str(), false);
    library.Load(nameText, pathText, neighbour);
}

std::string fullPath(const KV_SharedLib &library) {
    return std::string(library.GetFullPath().GetSystemString());
}

// What the library's function gives, 0 when there is none. That of plain_module counts its calls since it was
// loaded.
int call(const KV_SharedLib &library, const char *name = "plainModuleCall") {
    void *function = library.FindSymbol(name);
    return function != nullptr ? reinterpret_cast<int (*)()>(function)() : 0;
}

// "plain_module" lies beside the program, and in a folder with "dotted.1", whose bare name is no file.
class SharedLib : public ::testing::Test {
protected:
    SharedLib() {
        fs::create_directory(m_folder / "sub");
        for (const char *copy : {"plain_module", "dotted.1", "sub/nested"})
            fs::copy_file(kModule, m_folder / (copy + kExtension));
        load(m_beside, "plain_module", "");
    }
    ~SharedLib() override { EXPECT_EQ(fs::current_path(), m_before); }

    TempFolder m_folder;
    KV_SharedLib m_beside, m_library;
    const KV_FileSpec m_neighbour = KV_FileSpecFromNative(m_folder.native("any.krg").c_str());
    const std::string m_path = folderOf(m_neighbour);
    const fs::path m_before = fs::current_path();
};

TEST_F(SharedLib, TriesFolderFullPathBareNameAndNeighbour) {
    struct Route {
        const char *name;
        std::string library, path, fullPath;
        bool isBeside;  // the one beside the program
    };
    const Route routes[] = {
        {"folder first", "plain_module" + kExtension, m_path, m_path + "\\plain_module" + kExtension, false},
        {"full path of a bare name", "nested", m_path + "\\sub", m_path + "\\sub\\nested", false},
        {"full path", "dotted.1", m_path + '\\', m_path + "\\\\dotted.1", false},
        {"full path without a folder", "plain_module", "", "plain_module", true},
        {"bare name", "plain_module", m_path + "\\sub", m_path + "\\sub\\plain_module", true},
        {"neighbour", "dotted.1", "", m_path + "\\dotted.1", false},
        {"neighbour and folder", "nested", "sub", m_path + "\\sub\\nested", false},
    };
    for (const Route &route : routes) {
        KV_SharedLib library;
        load(library, route.library, route.path, &m_neighbour);
        EXPECT_TRUE(library.IsLoaded()) << route.name;
        EXPECT_EQ(fullPath(library), route.fullPath + kExtension) << route.name;
        EXPECT_GT(call(library), 0) << route.name;
        EXPECT_EQ(library.FindSymbol("plainModuleCall") == m_beside.FindSymbol("plainModuleCall"),
                  route.isBeside)
            << route.name;
    }
}

TEST_F(SharedLib, FindsWhatTheLibraryDependsOnInItsFolder) {
    for (const char *file : {"leaning_module", "leaned_on"})
        fs::copy_file(fs::path(KVBASE_LEANING_MODULES) / (file + kExtension), m_folder / (file + kExtension));
    load(m_library, "leaning_module", m_path);
    EXPECT_EQ(call(m_library, "leaningModuleCall"), 5);
}

TEST_F(SharedLib, StaysLoadedUntilItIsGivenBack) {
    {
        KV_SharedLib other;
        load(other, "nested", m_path + "\\sub");
        EXPECT_EQ(call(other), 1);
    }
    load(m_library, "nested", m_path + "\\sub");
    EXPECT_EQ(call(m_library), 1) << "unloaded, so it begins anew";
    load(m_library, "dotted.1", m_path);
    EXPECT_EQ(call(m_library), 2) << "the former one stays";
    EXPECT_EQ(fullPath(m_library), m_path + "\\dotted.1" + kExtension);
    m_library.Release();
    EXPECT_FALSE(m_library.IsLoaded());
    EXPECT_EQ(call(m_library), 0);
    m_library.Release();
    m_library.Load(nullptr);
    EXPECT_EQ(call(m_library), 1);
}

TEST_F(SharedLib, WhatIsNotFoundIsToldAndCanBeTriedAgain) {
    const KV_FileSpec noFolder(KV_W("any.krg"));
    const KV_FileSpec *neighbours[] = {nullptr, &m_neighbour, &noFolder};
    for (const KV_FileSpec *neighbour : neighbours) {
        try {
            load(m_library, "missing", m_path, neighbour);
            ADD_FAILURE() << "loaded";
        } catch (const KV_FileException &failure) {
            KV_String text;
            EXPECT_EQ(failure.GetFileErrorId(), KV_FileException::FileNotFound);
            EXPECT_NE(failure.GetOSError(), 0);
            EXPECT_GE(failure.ToString(text).Find("Detail: missing;"), 0);
        }
        EXPECT_FALSE(m_library.IsLoaded());
        EXPECT_EQ(fullPath(m_library), m_path + "\\missing" + kExtension);
    }
    load(m_library, "plain_module", m_path);
    EXPECT_TRUE(m_library.IsLoaded());
}

TEST_F(SharedLib, ModulesLinkedIntoTheProgramAreNotLoaded) {
    load(m_library, "press_static_dll_2", m_path);
    EXPECT_FALSE(m_library.IsLoaded());
    EXPECT_EQ(fullPath(m_library), m_path + "\\press_static_dll_2" + kExtension);
    EXPECT_EQ(call(m_library), 0);
    KV_SystemString name("a", false), path("b", false);
    const KV_SharedLib composed(name, path);
    EXPECT_EQ(fullPath(composed), "b\\a" + kExtension);
    EXPECT_FALSE(composed.IsLoaded()) << "not yet";
}

}  // namespace
