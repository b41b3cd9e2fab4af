#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/runtime/sharelib.h>

#include <filesystem>

#include "platform/platform.h"
#include "temp_folder.h"

namespace fs = std::filesystem;

namespace {

const fs::path kModule = KVBASE_PLAIN_MODULE;
const std::string kExtension = kv::platform::kLibraryExtension;

KV_SystemString systemText(const std::string &text) { return KV_String(text.c_str()); }

// A native path as the library takes it.
std::string pathOf(const std::string &native) {
    return std::string(KV_FileSpecFromNative(KV_String(native.c_str())).GetFileName());
}

void load(KV_SharedLib &library, const std::string &name, const std::string &path,
          const KV_FileSpec *neighbour = nullptr) {
    KV_SystemString nameText = systemText(name), pathText = systemText(path);
    library.Load(nameText, pathText, neighbour);
}

std::string fullPath(const KV_SharedLib &library) {
    return std::string(library.GetFullPath().GetSystemString());
}

// How often the library's function was called since it was loaded.
int call(const KV_SharedLib &library) {
    void *function = library.FindSymbol("plainModuleCall");
    return function != nullptr ? reinterpret_cast<int (*)()>(function)() : 0;
}

TEST(SharedLib, ComposesTheFullPath) {
    const char *paths[][3] = {
        {"a", "", "a"}, {"a", "b", "b\\a"}, {"a", "b\\", "b\\\\a"}, {"a.2", "D:\\b c", "D:\\b c\\a.2"}};
    for (const auto &row : paths) {
        KV_SystemString name = systemText(row[0]), path = systemText(row[1]);
        EXPECT_EQ(fullPath(KV_SharedLib(name, path)), row[2] + kExtension);
    }
    EXPECT_EQ(fullPath(KV_SharedLib()), "");
}

// In the first folder: "plain_module", as beside the program, and "dotted.1", whose bare name is no file.
class SharedLibSearch : public ::testing::Test {
protected:
    SharedLibSearch() {
        fs::copy_file(kModule, m_folder / kModule.filename());
        fs::copy_file(kModule, m_folder / ("dotted.1" + kExtension));
        fs::create_directory(m_folder / "sub");
        fs::copy_file(kModule, m_folder / "sub" / ("nested" + kExtension));
        load(m_beside, "plain_module", "");
        call(m_beside);
    }
    ~SharedLibSearch() override { EXPECT_EQ(fs::current_path(), m_before); }

    std::string folder() const { return pathOf(m_folder.native()); }
    KV_FileSpec neighbour() const { return KV_FileSpec(KV_String((folder() + "\\any.krg").c_str())); }

    TempFolder m_folder;
    KV_SharedLib m_beside;  // the one beside the program, called once

private:
    fs::path m_before = fs::current_path();
};

TEST_F(SharedLibSearch, TriesFolderFullPathBareNameAndNeighbour) {
    const KV_FileSpec file = neighbour();
    struct Route {
        const char *name;
        std::string library, path;
        const KV_FileSpec *neighbour;
        std::string fullPath;
        bool isBeside;  // found beside the program
    };
    const Route routes[] = {
        {"folder first", "plain_module", folder(), &file, folder() + "\\plain_module", false},
        {"full path", "dotted.1", folder(), nullptr, folder() + "\\dotted.1", false},
        {"full path without a folder", "plain_module", "", &file, "plain_module", true},
        {"bare name", "plain_module", folder() + "\\sub", &file, folder() + "\\sub\\plain_module", true},
        {"neighbour", "dotted.1", "", &file, folder() + "\\dotted.1", false},
        {"neighbour and folder", "nested", "sub", &file, folder() + "\\sub\\nested", false},
    };
    for (const Route &route : routes) {
        KV_SharedLib library;
        load(library, route.library, route.path, route.neighbour);
        EXPECT_TRUE(library.IsLoaded()) << route.name;
        EXPECT_EQ(fullPath(library), route.fullPath + kExtension) << route.name;
        EXPECT_EQ(library.FindSymbol("plainModuleCall") == m_beside.FindSymbol("plainModuleCall"),
                  route.isBeside)
            << route.name;
        EXPECT_GT(call(library), 0) << route.name;
    }
}

TEST_F(SharedLibSearch, ALoadedLibraryStaysUntilItIsGivenBack) {
    KV_SharedLib library;
    load(library, "nested", folder() + "\\sub");
    EXPECT_EQ(call(library), 1);
    load(library, "plain_module", folder());
    EXPECT_EQ(call(library), 2);
    EXPECT_EQ(fullPath(library), folder() + "\\plain_module" + kExtension);
    library.Release();
    EXPECT_FALSE(library.IsLoaded());
    EXPECT_EQ(call(library), 0);
    library.Release();
    {
        KV_SharedLib other;
        load(other, "nested", folder() + "\\sub");
        EXPECT_EQ(call(other), 1) << "unloaded, so it begins anew";
    }
    load(library, "nested", folder() + "\\sub");
    EXPECT_EQ(call(library), 1) << "the destructor unloads as well";
    library.Release();
    library.Load(nullptr);
    EXPECT_EQ(call(library), 1);
}

TEST_F(SharedLibSearch, WhatIsNotFoundIsToldAndCanBeTriedAgain) {
    KV_SharedLib library;
    const KV_FileSpec file = neighbour(), noFolder(KV_W("any.krg"));
    const KV_FileSpec *neighbours[] = {nullptr, &file, &noFolder};
    for (const KV_FileSpec *one : neighbours) {
        try {
            load(library, "missing", folder(), one);
            ADD_FAILURE() << "loaded";
        } catch (const KV_FileException &failure) {
            EXPECT_EQ(failure.GetFileErrorId(), KV_FileException::FileNotFound);
            EXPECT_NE(failure.GetOSError(), 0);
            KV_String text;
            EXPECT_EQ(
                std::string(failure.ToString(text)).find("File exception: FileNotFound;   Detail: missing;"),
                0u);
        }
        EXPECT_FALSE(library.IsLoaded());
        EXPECT_EQ(fullPath(library), folder() + "\\missing" + kExtension);
    }
    load(library, "plain_module", folder());
    EXPECT_TRUE(library.IsLoaded());
}

TEST(SharedLib, ModulesLinkedIntoTheProgramAreNotLoaded) {
    KV_SharedLib library;
    load(library, "press_static_dll_2", "b");
    EXPECT_FALSE(library.IsLoaded());
    EXPECT_EQ(fullPath(library), "b\\press_static_dll_2" + kExtension);
    EXPECT_EQ(library.FindSymbol("plainModuleCall"), nullptr);
    KV_SystemString text = systemText("text");
    library.AddDebugD(text);
}

}  // namespace
