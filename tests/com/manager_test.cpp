// The manager without its modules (module_test.cpp has these): start-up and end, settings, where data lie.

#include <kvbase/com/commngr.h>
#include <kvbase/com/kv_cacher.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_tracer.h>

#include <cstring>
#include <fstream>
#include <new>
#include <optional>
#include <string>

#include "../runtime/trace_capture.h"
#include "counted_memory.h"
#include "registry_test.h"
#include "system.h"

#if defined(_WIN32)
// Nothing is counted: texts pass between this program and the C++ library's DLL, which has operators of its
// own.
thread_local Heap heap;
#endif

namespace {

// Whether a trace file is open. When there is none, one is begun and ended.
bool traces() {
    if (!KV_Tracer::StartTracing(true, "probe.txt")) return true;
    KV_Tracer::StopTracing();
    return false;
}

std::uint32_t baseMask() {
    std::uint32_t mask = 0;
    KV_Tracer::GetMask("KvBaseTrace", &mask);
    return mask;
}

class Manager : public RegistryTest {
protected:
    ~Manager() override {
        m_manager.reset();
        KV_Tracer::SetMask("KvBaseTrace", 0);
        KV_Tracer::SetStreamP("KvBaseTrace", nullptr);
    }
    KV_COMManager &open(const std::string &text) { return m_manager.emplace(write(text)); }

    std::optional<KV_COMManager> m_manager;
};

const char *const kTracing =
    "/Tracing << /DoTracing 1 /TraceToFile 1 /TraceFileName (MyLog) /KvBaseTrace 16 >>";

TEST_F(Manager, StartThatFailsLeavesNothingBehind) {
    const auto with = [](const std::string &more) {
        return std::string("<< ") + kTracing + ' ' + more + " >>";
    };
    std::string longPaths = "/Components <<";
    for (const char letter : {'a', 'b', 'c'})
        longPaths += " /" + std::string(6 << 20, letter) + " (module)";
    struct {
        const char *name;
        std::string text;
        int code;
    } const rows[] = {
        {"no dictionary", "5", 1000 + KV_FileException::InvalidFile},
        {"a reference without end", with("/x (@{y)"), KV_COMException::SyntaxError},
        {"a section that is none", with("/Components 5"), KV_COMException::RegistryNotCreated},
        {"endless paths", with(longPaths + " >>"), KV_COMException::SyntaxError},
        {"a data folder that is none", with("/Environment << /PreferencePath 5 >>"),
         KV_COMException::InvalidComponentId},
    };
    for (const auto &row : rows) {
        const KV_FileSpec file = write(row.text);
        for (long live = -1, round = 0; round < 2; ++round) {  // the first one fills what lives on
            EXPECT_EQ(codeOf([&] { KV_COMManager manager(file); }), row.code) << row.name;
            EXPECT_FALSE(traces()) << row.name;
            EXPECT_TRUE(round == 0 || heap.live == live) << row.name << ": " << heap.live - live;
            live = heap.live;
        }
    }
    EXPECT_EQ(codeOf([&] { KV_COMManager manager(spec("none.krg")); }), 1000 + KV_FileException::OpenRdError);
}

#if !defined(_WIN32)
// Memory runs out at each of the steps in turn.
TEST_F(Manager, StartThatRunsOutOfMemoryLeavesNothingBehind) {
    const KV_FileSpec file =
        write(std::string("<< /Components << /Ink << /A (one) /B (two) >> /C (one) >> ") + kTracing +
              " /Environment << /a (@{Environment:b}) /b (c) >> >>");
    { const KV_COMManager fillsWhatLivesOn(file); }
    const long live = heap.live;
    long steps = 0;
    for (bool isDone = false; !isDone; ++steps) {
        heap.allowed = steps;
        try {
            const KV_COMManager manager(file);
            isDone = heap.allowed != 0;
            heap.allowed = -1;
        } catch (const std::bad_alloc &) {
        } catch (const KV_Exception &) {
        }
        heap.allowed = -1;
        ASSERT_EQ(heap.live, live) << "step " << steps;
        ASSERT_FALSE(traces()) << "step " << steps;
    }
    EXPECT_GT(steps, 100);
}
#endif

TEST_F(Manager, TracesForAsLongAsItLivesWhenTheRegistrySaysSo) {
    struct {
        const char *tracing;
        bool toFile;
        std::uint32_t mask;
    } const rows[] = {
        {kTracing, true, 16},
        {"/Tracing << /DoTracing 0 /TraceToFile 1 /KvBaseTrace 16 >>", false, 0},
        {"/Tracing << /DoTracing 1 /KvBaseTrace 4 >>", false, 4},
        {"/Tracing << /DoTracing 1 /TraceToFile 2 /KvBaseTrace (4) >>", false, 0},
    };
    for (const auto &row : rows) {
        KV_Tracer::SetMask("KvBaseTrace", 0);
        open(std::string("<< ") + row.tracing + " >>");
        EXPECT_EQ(traces(), row.toFile) << row.tracing;
        EXPECT_EQ(baseMask(), row.mask) << row.tracing;
        m_manager.reset();
        EXPECT_FALSE(traces()) << row.tracing;
    }
    KV_Tracer::SetMask("KvBaseTrace", 0x24);
    KV_Tracer::SetTracing(open("<< >>"), "KvBaseTrace");
    EXPECT_EQ(baseMask(), 0x24U) << "says nothing about this one";
    TraceCapture lines(4);
    std::string text = "hello";
    m_manager->Trace(text, 4);
    EXPECT_EQ(lines.Take(), "module KvBaseTrac : hello");
}

TEST_F(Manager, KnowsTheComponentsOfItsRegistry) {
    open(
        "<< /Components << /Ink << /A (one) /B (one) /C << /D (two) >> >> /n 5 /Odd (a.b:) /Z << /Y (three) "
        "/X (@{Components:Odd}) >> >> >>");
    char four[] = "four", two[] = "two";
    m_manager->NewComponent(four, "New:Four");
    m_manager->NewComponent(two, "Ink:E");
    four[0] = two[0] = 'x';  // both were copied
    EXPECT_EQ(codeOf([&] { m_manager->NewComponent(two, "Ink:A:Below"); }),
              KV_COMException::InvalidComponentId);
    const struct {
        const char *path, *id;
    } rows[] = {{"Ink:A", "Ink"}, {"Ink:B", "Ink"}, {"Ink:C:D", "Ink"}, {"Ink:E", "Ink"},
                {"Odd", ""},      {"Z:X", ""},      {"Z:Y", "Z:Y"},     {"New:Four", "New:Four"}};
    for (const auto &row : rows) {
        m_manager->IncreaseUseCount(row.path);
        // Of two components with one id the first by file name answers.
        const bool isSecond = std::strcmp(row.path, "Ink:C:D") == 0 || std::strcmp(row.path, "Ink:E") == 0;
        EXPECT_EQ(m_manager->UseCount(row.id), isSecond ? 0U : 1U) << row.path;
        EXPECT_EQ(m_manager->TotalUseCount(), 1U) << row.path;
        m_manager->DecreaseUseCount(row.path);
        m_manager->DecreaseUseCount(row.path);
        EXPECT_EQ(m_manager->TotalUseCount(), 0U) << row.path << " stays at none";
    }
    for (const char *path : {"", "Ink", "n", "None"})
        m_manager->IncreaseUseCount(path);
    EXPECT_EQ(m_manager->TotalUseCount(), 0U) << "no components";
    EXPECT_EQ(m_manager->ComponentCount("Components"), 5U);
    EXPECT_EQ(m_manager->ComponentCount("Components:Ink"), 4U);
    EXPECT_EQ(codeOf([&] { m_manager->ComponentCount("None"); }), KV_COMException::NoSuchSection);

    m_manager->IncreaseUseCount("Odd");
    EXPECT_EQ(codeOf([&] { m_manager->DeleteComponent("one"); }), KV_COMException::InvalidComponentId)
        << "the text has a separator behind it";
    m_manager->DeleteComponent("a.b");
    EXPECT_EQ(m_manager->TotalUseCount(), 0U) << "forgotten";
    EXPECT_EQ(codeOf([&] { m_manager->DeleteComponent("a.b"); }), KV_COMException::InvalidComponentId);
    EXPECT_EQ(codeOf([&] { m_manager->CreateObject("Odd:Thing", "IThing"); }),
              KV_COMException::ComponentNotFound);
}

TEST_F(Manager, KeepsCopiesOfItsFolders) {
    open("<< /Environment << /PreferencePath (own) /Data (@{Environment:PreferencePath}\\\\d) >> >>");
    EXPECT_TRUE(*m_manager->GetPath() == spec("r.krg"));
    EXPECT_TRUE(m_manager->GetTargetDirPath()->GetFileNameW() == KV_W("own\\TonvaleX\\Targets\\"));
    KV_FileSpec data;
    m_manager->GetRegFileSpec("Data", data);
    EXPECT_TRUE(data.GetFileNameW() == KV_W("own\\d"));
    struct {
        const char *name;
        KV_FileSpec *(KV_COMManager::*get)() const;
        void (KV_COMManager::*set)(const KV_FileSpec &);
    } const rows[] = {
        {"library", &KV_COMManager::GetLibPath, &KV_COMManager::SetLibPath},
        {"sitr", &KV_COMManager::GetSITRDirPath, &KV_COMManager::SetSITRDirPath},
        {"screen", &KV_COMManager::GetScreenDirPath, &KV_COMManager::SetScreenDirPath},
        {"conversion", &KV_COMManager::GetColorConversionProfilesPath,
         &KV_COMManager::SetColorConversionProfilesPath},
        {"caching", &KV_COMManager::GetCachingPath, &KV_COMManager::SetCachingPath},
        {"target", &KV_COMManager::GetTargetDirPath, &KV_COMManager::SetTargetDirPath},
    };
    for (const auto &row : rows) {
        EXPECT_EQ((*m_manager.*row.get)() == nullptr, row.get != &KV_COMManager::GetTargetDirPath)
            << row.name;
        (*m_manager.*row.set)(spec(std::string(row.name) + '\\'));
        (*m_manager.*row.set)(*(*m_manager.*row.get)());  // a copy of what gives way
    }
    for (const auto &row : rows)
        EXPECT_TRUE(*(*m_manager.*row.get)() == spec(std::string(row.name) + '\\')) << row.name;
    EXPECT_EQ(m_manager->GetTmpDirPath(), nullptr);
    char folder[] = "tmp";
    m_manager->SetTmpDirPath(folder);
    m_manager->SetTmpDirPath(m_manager->GetTmpDirPath());
    folder[0] = 'x';
    EXPECT_STREQ(m_manager->GetTmpDirPath(), "tmp");
    m_manager->SetTmpDirPath(nullptr);
    EXPECT_EQ(m_manager->GetTmpDirPath(), nullptr);
    EXPECT_TRUE(m_manager->GetRegularizationOption());
}

TEST_F(Manager, HandsOnToItsCache) {
    open("<< >>");
    m_manager->SetCachingMethod(KV_CACHING_FILES);
    m_manager->SetMultiThreading(!m_manager->GetMultiThreading());
    m_manager->SetCachingPath(spec("links") += KV_W("\\"));
    EXPECT_EQ(m_manager->GetCachingMethod(), KV_CACHING_FILES);
    EXPECT_EQ(m_manager->Cacher()->GetMultiThreading(), m_manager->GetMultiThreading());
    const unsigned char bytes[16] = {7};
    KV_CheckSum sum(bytes, 16);
    std::ofstream(m_folder / "links" / "templink_07000000000000000000000000000000.icc") << "link";
    EXPECT_TRUE(KV_FileSpec(m_manager->Cacher()->GetLinkFilePath(&sum)).FileExists());
    m_manager->RemoveFileCache();
    EXPECT_FALSE(KV_FileSpec(m_manager->Cacher()->GetLinkFilePath(&sum)).FileExists());
}

TEST_F(Manager, FindsCharacterizationData) {
    open("<< >>");
    for (const char *name : {"ABC_Kalvor.enc", "Long.NameL_Kalvor.enc", "DEFL_Kalvor.enc", "DEF_Kalvor.enc"})
        std::ofstream(m_folder / name) << "data";
    EXPECT_EQ(m_manager->GetCharacterizationDataPath("ABC_Kalvor.enc"), nullptr) << "no folder yet";
    EXPECT_EQ(m_manager->GetCharacterizationDataFileSpec("ABC"), nullptr);
    m_manager->SetCharacterizationDataPath(spec(""));
    const struct {
        const char *name, *file;  // null: there is none
    } rows[] = {{"ABC.icc", "ABC_Kalvor.enc"},
                {"ABCL.icc", "ABC_Kalvor.enc"},
                {"ABCLL", "ABC_Kalvor.enc"},
                {"ABCl", nullptr},
                {"DEFL.x.y", "DEFL_Kalvor.enc"},
                {"DEFLL", "DEFL_Kalvor.enc"},
                {"Long.NameL", nullptr},
                {"LABC", nullptr},
                {".icc", nullptr},
                {"", nullptr},
                {"L", nullptr}};
    for (const auto &row : rows) {
        const KV_FileSpec *found = m_manager->GetCharacterizationDataFileSpec(row.name);
        ASSERT_EQ(found != nullptr, row.file != nullptr) << row.name;
        EXPECT_TRUE(found == nullptr || *found == (spec("") += row.file)) << row.name;
    }
    EXPECT_TRUE(*m_manager->GetCharacterizationDataPath("any") == (spec("") += "any"));
    EXPECT_NE(m_manager->GetCharacterizationDataPath(std::string(511, 'x')), nullptr);
    EXPECT_EQ(m_manager->GetCharacterizationDataPath(std::string(512, 'x')), nullptr);

    m_manager->SetCallBackCharacterizationDataPath(nullptr);
    EXPECT_NE(m_manager->GetCharacterizationDataPath("any"), nullptr) << "null changes nothing";
    static std::string asked;
    m_manager->SetCallBackCharacterizationDataPath([](const std::string &name) {
        asked = name;
        return KV_WString(KV_W("called"));
    });
    m_manager->SetCharacterizationDataPath(spec(""));
    EXPECT_TRUE(m_manager->GetCharacterizationDataPath("any")->GetFileNameW() == KV_W("called"));
    EXPECT_EQ(asked, "any") << "the callback wins for good";
    EXPECT_EQ(m_manager->GetCharacterizationDataFileSpec("ABC"), nullptr)
        << "which the callback puts nowhere";
}

// For those who only look.
TEST_F(Manager, ReadsARegistryWithoutTraces) {
    KV_UValDict raw(0), expanded(0);
    const KV_FileSpec file = write(std::string("<< /a (@{b}!) /b (c) ") + kTracing + " >>");
    KV_COMManager::ReadRegistry(file, raw, expanded);
    EXPECT_STREQ(raw.GetValue("a", "", 0), "@{b}!");
    EXPECT_STREQ(expanded.GetValue("a", "", 0), "c!");
    EXPECT_EQ(raw.GetUValType("a"), KV_UVAL_STRING);
    for (KV_UValDict *dict : {&raw, &expanded})
        EXPECT_NE(std::string(dict->GetValue("Environment:PreferencePath", "", 0)).find("Trevane"),
                  std::string::npos);
    EXPECT_FALSE(!kOnWindows && KV_FileSpec(spec("Trevane")).FileExists());
    EXPECT_FALSE(traces());
    write("<< /a (@{a}) >>");
    EXPECT_EQ(codeOf([&] { KV_COMManager::ReadRegistry(file, raw, expanded); }),
              KV_COMException::SyntaxError);
    EXPECT_STREQ(raw.GetValue("a", "", 0), "@{b}!") << "as it was";
}

}  // namespace
