#include "com/comreg.h"

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <memory>
#include <string>

#include "../runtime/trace_capture.h"
#include "platform/platform.h"
#include "registry_test.h"
#include "system.h"
#include "utf8_path.h"

namespace {

class Registry : public RegistryTest {
protected:
    KV_Registry &open(const std::string &text) {
        m_registry = std::make_unique<KV_Registry>(write(text));
        return *m_registry;
    }
    std::string get(const char *section, const char *key) {
        const std::unique_ptr<KV_UTFString> entry(m_registry->GetEntry(section, key));
        return {entry->Ptr(), entry->Size()};
    }

    std::unique_ptr<KV_Registry> m_registry;
};

TEST_F(Registry, ExpandsReferencesWherever) {
    open(
        "<< /a (see @{m:z}) /b (@{a}|@{m:z}) /bytes (\303\244@{a}\303\266) /empty (<@{}>) /late (@{z})\n"
        "/m << /y (@{a}) /z (deep) >> /missing (a@{No:Such}b) /n (@{number}x) /nested (@{m:@{k}}) /k (z)\n"
        "/number 5 /pieces (@@{No}{m:z}) /s (@{m}x) /twice (@{b}@{b}) /z (@{y1} and @{y2}) /y1 (@{m:z}) /y2 "
        "(2)\n"
        "/array [ (one @{k}) (two) ] /longs [ 1 2 ] >>");
    struct {
        const char *key, *value;
    } const cases[] = {
        {"a", "see deep"},
        {"b", "see deep|deep"},
        {"bytes", "\303\244see deep\303\266"},
        {"empty", "<>"},
        {"late", "deep and 2"},
        {"m:y", "see deep"},
        {"missing", "ab"},
        {"n", "x"},
        {"nested", "}"},  // the first brace ends the path "m:@{k"
        {"pieces", "deep"},
        {"s", "x"},
        {"twice", "see deep|deepsee deep|deep"},
        {"array", "one z"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(get("", c.key), c.value) << c.key;
    EXPECT_EQ(m_registry->GetSection("")->GetUValType("a"), KV_UVAL_UTFSTRING);
    EXPECT_EQ(m_registry->GetSection("")->GetUValDimension("longs"), 2);
    EXPECT_EQ(m_registry->GetSection("m")->GetSize(), 2);
}

TEST_F(Registry, HasItsSectionsAndDefaults) {
    open("<< >>");
    for (const char *section : {"Components", "Tracing", "Environment"})
        EXPECT_EQ(m_registry->GetSection(section)->GetSize(), section[0] == 'E' ? 2 : 0) << section;
    const std::string preference = get("Environment", "PreferencePath");
    EXPECT_NE(preference.find("Trevane"), std::string::npos);
    EXPECT_TRUE(KV_FileSpec(preference.c_str()).FileExists());
    EXPECT_EQ(get("Environment", "TmpPath"),
              std::string(KV_FileSpec(kv::platform::temporaryFolder()).GetFileName()));
    open(
        "<< /Environment << /PreferencePath (own) /Profiles (@{Environment:PreferencePath}\\\\Profiles) >> "
        ">>");
    KV_FileSpec file;
    m_registry->GetFileSpec("Profiles", file);
    EXPECT_TRUE(file.GetFileNameW() == KV_W("own\\Profiles"));
    EXPECT_EQ(codeOf([&] { m_registry->GetFileSpec("None", file); }), KV_COMException::NoSuchValue);
}

TEST_F(Registry, SaysHowItIsTraced) {
    open(
        "<< /Tracing << /DoTracing 1 /TraceToFile 1 /TraceFileName (My@{No}Log) /KvBaseTrace 17 /Text (1) >> "
        ">>");
    EXPECT_EQ(m_registry->DoTracing(), 1);
    EXPECT_EQ(m_registry->TraceToFile(), 1);
    EXPECT_EQ(m_registry->GetTracingMask("KvBaseTrace"), 17U);
    EXPECT_EQ(codeOf([&] { m_registry->GetTracingMask("Text"); }), KV_COMException::InvalidComponentId);
    EXPECT_EQ(codeOf([&] { m_registry->GetTracingMask("Other"); }), KV_COMException::NoSuchValue);
    KV_String name;
    const std::time_t before = std::time(nullptr);
    m_registry->TraceFileName(name);
    bool isNow = false;
    for (std::time_t second = before; second <= std::time(nullptr); ++second) {
        char expected[100];
        const std::tm now = *std::localtime(&second);
        std::strftime(expected, sizeof expected, "MyLog_%Y%m%d_%H%M%S.txt", &now);
        isNow = isNow || std::string(name) == expected;
    }
    EXPECT_TRUE(isNow) << name;
    open("<< /Tracing << /DoTracing (1) /TraceToFile 1.0 /TraceFileName 5 >> >>");
    EXPECT_EQ(m_registry->DoTracing() + m_registry->TraceToFile(), 0) << "of another type";
    m_registry->TraceFileName(name);
    EXPECT_EQ(std::string(name).rfind("KalvorLog_", 0), 0U);
}

TEST_F(Registry, TakesNewEntriesAndSections) {
    open("<< /Environment << /Base (b) >> /leaf 5 >>");
    auto *value = new KV_UTFString("@{Environment:Base}/@{Environment:None}");
    KV_UTFString *expanded = m_registry->NewEntry("Environment", "New", value);
    EXPECT_EQ(codeOf([&] { m_registry->NewEntry("Environment", "X", new KV_UTFString("@{open")); }),
              KV_COMException::SyntaxError);
    EXPECT_STREQ(expanded->Ptr(), "b/");
    EXPECT_EQ(get("Environment", "New"), "b/");
    m_registry->NewEntry("Environment", "Next", new KV_UTFString("<@{Environment:New}>"));
    EXPECT_EQ(get("Environment", "Next"), "<b/>");
    m_registry->NewEntry("Environment", "Base", new KV_UTFString("@{Environment:Base}c"));
    EXPECT_EQ(get("Environment", "Base"), "bc") << "what was there before";
    EXPECT_EQ(
        codeOf([&] { m_registry->NewEntry("Environment", "Self", new KV_UTFString("@{Environment:Self}")); }),
        KV_COMException::SyntaxError);
    KV_UTFString kept("stays the caller's");
    EXPECT_EQ(codeOf([&] { m_registry->NewEntry("None", "X", &kept); }), KV_COMException::NoSuchSection);
    EXPECT_EQ(codeOf([&] { m_registry->NewEntry("Environment", "Next:X", new KV_UTFString("no place")); }),
              KV_COMException::InvalidComponentId);

    KV_UValDict *section = m_registry->NewSection("a:b");
    EXPECT_EQ(section, m_registry->NewSection("a:b"));
    EXPECT_EQ(section, m_registry->GetSection("a:b"));
    EXPECT_EQ(codeOf([&] { m_registry->NewSection("leaf"); }), KV_COMException::RegistryNotCreated);
    EXPECT_EQ(codeOf([&] { m_registry->GetSection("leaf"); }), KV_COMException::InvalidComponentId);
    EXPECT_EQ(codeOf([&] { m_registry->GetSection("none"); }), KV_COMException::NoSuchSection);
    EXPECT_EQ(codeOf([&] { m_registry->GetEntry("", "leaf"); }), KV_COMException::InvalidComponentId);
    EXPECT_EQ(codeOf([&] { m_registry->GetEntry("", "none"); }), KV_COMException::NoSuchValue);
}

TEST_F(Registry, BadFilesAreRefused) {
    std::string doubling = "<< /a0 (0123456789)";
    for (int i = 1; i < 40; ++i)
        doubling += " /a" + std::to_string(i) + " (@{a" + std::to_string(i - 1) + "}@{a" +
                    std::to_string(i - 1) + "})";
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<< /a ";
    deep += "(x)";
    for (int i = 0; i < 100000; ++i)
        deep += " >>";
    std::string wide = "<< /t (" + std::string(60000, 'x') + ")";
    for (int i = 0; i < 2000; ++i)
        wide += " /w" + std::to_string(i) + " (@{t})";
    struct {
        const char *name;
        std::string text;
        int code;
    } const cases[] = {
        {"unclosed reference", "<< /x << /y (a@{b) >> >>", KV_COMException::SyntaxError},
        {"refers to itself", "<< /x (@{x}) >>", KV_COMException::SyntaxError},
        {"through others", "<< /x (@{y}) /y (a@{z}) /z (@{x}) >>", KV_COMException::SyntaxError},
        {"doubling", doubling + " >>", KV_COMException::SyntaxError},
        {"many long ones", wide + " >>", KV_COMException::SyntaxError},
        {"a section that is no dictionary", "<< /Tracing 5 >>", KV_COMException::RegistryNotCreated},
        {"no dictionary", "5", 1000 + KV_FileException::InvalidFile},
        {"a hundred thousand levels", deep, -1},
    };
    for (const auto &c : cases)
        EXPECT_EQ(codeOf([&] { open(c.text); }), c.code) << c.name;
    EXPECT_EQ(codeOf([&] { KV_Registry missing(KV_FileSpec(KV_W("no_such_folder\\r.krg"))); }),
              1000 + KV_FileException::OpenRdError);
}

// The text that tells a user's log where a registry failed.
TEST_F(Registry, FailuresNameTheirPlace) {
    open("<< /Environment << /X (x) >> /leaf 5 >>");
    KV_FileSpec file;
    const struct {
        const char *place;
        std::function<void()> call;
    } rows[] = {
        {"KV_RegistryGetValue", [&] { m_registry->GetEntry("", "leaf"); }},
        {"KV_RegistryGetSection", [&] { m_registry->GetSection("none"); }},
        {"KV_Registry::CleanString",
         [&] { m_registry->NewEntry("Environment", "Y", new KV_UTFString("@{open")); }},
        {"KV_Registry::GetEntry", [&] { m_registry->GetFileSpec("none", file); }},
        {"KV_Registry::NewEntry",
         [&] { m_registry->NewEntry("Environment", "X:Y", new KV_UTFString("no place")); }},
        {"KV_Registry::NewSection", [&] { m_registry->NewSection("leaf"); }},
        {"KV_Registry::GetTracingMask", [&] { m_registry->GetTracingMask("none"); }},
    };
    TraceCapture trace(1);
    for (const auto &row : rows) {
        EXPECT_NE(codeOf(row.call), -1) << row.place;
        const std::string line = trace.Take();
        EXPECT_NE(line.find(std::string(row.place)), std::string::npos) << line;
    }
}

TEST_F(Registry, IsChosenBesideTheProgramOrInTheCurrentFolder) {
    KV_FileSpec beside(kv::platform::programPath());
    KV_WString name = beside.GetFileNameW();
    if (kOnWindows) {
        name.replace(name.rfind(KV_W(".exe")), 4, KV_W(".krg"));
        std::ofstream(pathFromUtf8(std::string(KV_NativePath(name)))) << "<< /which (beside) >>";
        EXPECT_TRUE(KV_Registry().File().GetFileNameW() == name);
        std::filesystem::remove(pathFromUtf8(std::string(KV_NativePath(name))));
    }
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(m_folder / "");
    EXPECT_EQ(codeOf([] { KV_Registry(); }), 1000 + KV_FileException::OpenRdError);
    std::ofstream("kalvor.krg") << "<< /which (here) >>";
    m_registry = std::make_unique<KV_Registry>();
    EXPECT_EQ(get("", "which"), "here");
    std::filesystem::current_path(before);
}

}  // namespace
