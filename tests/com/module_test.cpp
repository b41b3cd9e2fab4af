// Component modules as the manager finds, loads, asks and unloads them.
#include <gtest/gtest.h>
#include <kvbase/com/commngr.h>
#include <kvbase/com/commod.h>
#include <kvbase/runtime/kv_exception.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

#include "../modules/scripted_module.h"
#include "../runtime/trace_capture.h"
#include "countdown.h"
#include "temp_folder.h"

extern "C" KV_MODULE_EXPORT ModuleScript **moduleScript();  // of the module in this program

struct kv::detail::ComponentAccess {
    static void lock(KV_COMComponent &component, KV_COMManager &manager) { component.Lock(&manager); }
    static void unlock(KV_COMComponent &component) { component.Unlock(); }
    static void load(KV_COMComponent &component, KV_COMManager &manager) {
        component.LoadComponent(&manager);
    }
    static void use(KV_COMComponent &component) { component.use(); }
    static KV_DictPath subId(const KV_COMComponent &component, const KV_DictPath &path) {
        return component.SubID(path);
    }
    static void baseId(KV_COMComponent &component, const KV_DictPath &path) { component.BaseID(path); }
};

namespace {

using Access = kv::detail::ComponentAccess;
using Calls = std::vector<std::string>;

std::string textOf(const KV_DictPath &path) {
    const KV_String text = path;
    return text.Ptr();
}

// A library that stays loaded, so that what it wrote down outlives the manager.
class HeldModule {
public:
    HeldModule(const char *name, ModuleScript &script) {
        KV_SystemString file(name, false), folder("", false);
        m_library.Load(file, folder, nullptr);
        *reinterpret_cast<ModuleScriptFunction>(m_library.FindSymbol("moduleScript"))() = &script;
    }

private:
    KV_SharedLib m_library;
};

class Modules : public ::testing::Test {
protected:
    Modules() { *moduleScript() = &m_script; }
    KV_COMManager &open(const std::string &components) {
        std::ofstream(m_folder / "r.krg") << "<< /Components << " << components << " >> >>";
        return m_manager.emplace(KV_FileSpecFromNative(m_folder.native("r.krg").c_str()));
    }
    ICounted *make(const char *path) {
        return static_cast<ICounted *>(m_manager->CreateObject(path, "ICounted"));
    }

    TempFolder m_folder;
    ModuleScript m_script, m_otherScript;
    HeldModule m_module{"scripted_module", m_script}, m_other{"other_module", m_otherScript},
        m_noExit{"no_exit_module", m_script};
    std::optional<KV_COMManager> m_manager;
};

TEST_F(Modules, OneServesTwoPathsAndIsLoadedOnce) {
    open("/Ink << /A (scripted_module) /B (scripted_module) >>");
    EXPECT_EQ(m_script.calls, Calls{}) << "nothing is loaded before it is asked";
    ICounted *const first = make("Ink:A:Thing"), *const second = make("Ink:B:Deep:Thing");
    EXPECT_EQ(m_manager->UseCount("Ink"), 2U);
    EXPECT_EQ(m_manager->UseCount("Ink:A") + m_manager->UseCount("None"), 0U) << "no whole ids";
    EXPECT_EQ(m_manager->TotalUseCount(), 2U);
    first->Release();
    second->Release();
    EXPECT_EQ(m_manager->TotalUseCount(), 0U);
    EXPECT_EQ(m_script.calls,
              (Calls{"init Ink:", "create A:Thing: ICounted", "create B:Deep:Thing: ICounted"}))
        << "and stays loaded";
    m_manager.reset();
    EXPECT_EQ(m_script.calls.back(), "exit");
}

// What CreateObject does with a path and an interface: a text that tells it from all else.
std::string outcome(KV_COMManager &manager, const char *path, const char *interfaceName) {
    try {
        static_cast<ICounted *>(manager.CreateObject(path, interfaceName))->Release();
        return "made";
    } catch (const KV_COMException &e) {
        return "component " + std::to_string(e.GetComponentError());
    } catch (const KV_FileException &e) {
        return "file " + std::to_string(e.GetFileErrorId());
    } catch (const KV_ProfileException &) {
        return "profile";
    } catch (const ModuleFailure &e) {
        return "own " + std::to_string(e.code);
    }
}

TEST_F(Modules, WhatFailsIsToldByTypeAndCanBeTriedAgain) {
    open(
        "/Ink << /A (scripted_module) >> /Gone (no_such_module) /Plain (plain_module) /Half "
        "(no_exit_module)");
    m_script.failingInits = 2;
    const std::string invalid = "component " + std::to_string(KV_COMException::InvalidComponent);
    const std::string notFound = "component " + std::to_string(KV_COMException::ComponentNotFound);
    const std::string noFile = "file " + std::to_string(KV_FileException::FileNotFound);
    struct {
        const char *path, *interfaceName;
        std::string outcome;
    } const rows[] = {
        {"Ink:A:Thing", "ICounted", "own 2"},
        {"Ink:A:Thing", "ICounted", "own 1"},
        {"Ink:A:Thing", "ICounted", "made"},
        {"Ink:A:Thing", "ThrowOwn", "own 7"},
        {"Ink:A:Thing", "ThrowProfile", "profile"},
        {"Ink:A:Thing", "IOther", notFound},
        {"Ink:Thing", "ICounted", notFound},
        {"Ink", "ICounted", notFound},
        {"", "ICounted", notFound},
        {"None:Thing", "ICounted", notFound},
        {"Gone:Thing", "ICounted", noFile},
        {"Gone:Thing", "ICounted", noFile},
        {"Plain:Thing", "ICounted", invalid},
        {"Half:Thing", "ICounted", invalid},
        {"Half:Thing", "ICounted", "made"},  // what it has of entry points serves
    };
    for (const auto &row : rows)
        EXPECT_EQ(outcome(*m_manager, row.path, row.interfaceName), row.outcome)
            << row.path << ' ' << row.interfaceName;
    EXPECT_EQ(std::count(m_script.calls.begin(), m_script.calls.end(), "init Half:"), 1);
}

TEST_F(Modules, MayAskTheManagerBack) {
    open("/Ink << /A (scripted_module) >> /Other (other_module)");
    m_script.askAtInit = "Other:Early";
    EXPECT_EQ(outcome(*m_manager, "Ink:A:Thing", "AskOther"), "made");
    EXPECT_EQ(m_otherScript.calls,
              (Calls{"init Other:", "create Early: ICounted", "create Thing: ICounted"}));
    m_otherScript.askAtInit = "Other:Thing";  // of itself, before it is ready
    open("/Other (other_module)");
    EXPECT_EQ(outcome(*m_manager, "Other:Thing", "ICounted"),
              "component " + std::to_string(KV_COMException::ComponentNotFound));
}

TEST_F(Modules, IsLinkedIntoTheProgram) {
    open("/Ink << /A (scripted_static_dll) >>");
    ModuleScript own;
    *moduleScript() = &own;
    EXPECT_EQ(outcome(*m_manager, "Ink:A:Thing", "ICounted"), "made");
    m_manager.reset();
    EXPECT_EQ(own.calls, (Calls{"init Ink:A:", "create Thing: ICounted", "exit"}));
}

TEST_F(Modules, ObjectsThatLiveAtTheEndAreReported) {
    struct {
        std::uint32_t uses, locks;
        bool hasExit;
        const char *line;
    } const rows[] = {
        {0, 0, true, ""},
        {1, 0, true, "RELEASE ERROR: 1 objects from module scripted_module were not released!\n"},
        {2, 0, false, "RELEASE ERROR: 2 objects from module scripted_module were not released!\n"},
        {1, 1, false, "LOCK ERROR: module scripted_module has lock count 1\n"},
    };
    open("");
    for (const auto &row : rows) {
        m_script.calls.clear();
        TraceCapture trace(0x11);
        {
            KV_COMComponent component("scripted_module", "Ink");
            EXPECT_THROW(Access::lock(component, *m_manager), KV_COMException) << "without a use";
            EXPECT_THROW(Access::unlock(component), KV_COMException);
            Access::load(component, *m_manager);
            for (std::uint32_t i = 0; i < row.uses; ++i)
                Access::use(component);
            for (std::uint32_t i = 0; i < row.locks; ++i)
                Access::lock(component, *m_manager);
            trace.Take();
            EXPECT_EQ(component.GetUseCount(), row.uses);
            EXPECT_EQ(trace.Take().find("Usecount: ") != std::string::npos, row.uses != 0);
        }
        const std::string lines = trace.Take();
        EXPECT_NE(lines.find(row.line), std::string::npos) << lines;
        EXPECT_EQ(lines.empty(), row.uses == 0) << lines;
        EXPECT_EQ(m_script.calls.back(), row.hasExit ? "exit" : "init Ink:") << row.uses;
    }
}

TEST_F(Modules, LoadOnceForManyThreads) {
    open("/Ink << /A (scripted_module) /B (scripted_module) >>");
    constexpr int kThreads = 8, kRounds = 50;
    Countdown start(kThreads);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            start.countDown();
            start.wait();
            for (int round = 0; round < kRounds; ++round)
                make(round % 2 == 0 ? "Ink:A:Thing" : "Ink:B:Thing")->Release();
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(m_script.calls.size(), 1U + kThreads * kRounds);
    EXPECT_EQ(std::count(m_script.calls.begin(), m_script.calls.end(), "init Ink:"), 1);
    EXPECT_EQ(m_manager->TotalUseCount(), 0U);
}

// While modules end, in the order of their names, the cache has gone and the registry is still there.
TEST_F(Modules, EndBeforeTheRegistryAndBehindTheCache) {
    KV_COMManager &manager = open("/Ink << /A (scripted_module) >> /Other (other_module)");
    for (const char *path : {"Ink:A:Thing", "Other:Thing"})
        make(path)->Release();
    m_otherScript.atExit = [&] {
        EXPECT_NE(m_script.calls.back(), "exit");
        EXPECT_EQ(manager.Cacher(), nullptr);
        EXPECT_EQ(manager.ComponentCount("Components"), 2U);
        throw ModuleFailure{1};  // nobody is left to tell
    };
    m_manager.reset();
    EXPECT_EQ(m_script.calls.back(), "exit");
    EXPECT_EQ(m_otherScript.calls.back(), "exit");
}

TEST_F(Modules, OneObjectMayOutliveTheManager) {
    open("/Ink << /A (scripted_module) >>");
    ICounted *const kept = make("Ink:A:Thing");
    TraceCapture trace(1);
    m_manager.reset();
    EXPECT_NE(trace.Take().find("RELEASE ERROR: 1 objects"), std::string::npos);
    EXPECT_EQ(m_script.calls.back(), "exit");
    kept->Forget();
}

TEST_F(Modules, IdsNarrowToWhatPathsHaveInCommon) {
    const struct {
        const char *id, *path, *narrowed, *subId;
    } rows[] = {
        {"A:B:C", "A:B:D", "A:B:", "D:"}, {"A:B", "A:B:C", "A:B:", "C:"}, {"A:B", "A", "A:", ""},
        {"A:B", "X", "", "X:"},           {"", "A:B", "", "A:B:"},        {"A:B", "A:Bx:C", "A:", "Bx:C:"},
    };
    for (const auto &row : rows) {
        KV_COMComponent component("file", row.id);
        Access::baseId(component, row.path);
        EXPECT_EQ(textOf(component.Id()), row.narrowed) << row.id << ' ' << row.path;
        EXPECT_EQ(textOf(Access::subId(component, row.path)), row.subId) << row.id << ' ' << row.path;
    }
}

}  // namespace
