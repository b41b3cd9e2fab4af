// The commands of kvtool for registries and their modules, run as a user does.
#include "run_tool.h"

namespace {

class KvToolRegistry : public ToolTest {
protected:
    KvToolRegistry() {
#if !defined(_WIN32)  // Windows asks its own registry
        setenv("APPDATA", (fs::temp_directory_path() / "kvtool_makes_no_folder").c_str(), 1);
#endif
    }
};

TEST_F(KvToolRegistry, ShowsEntriesAsWrittenAndExpanded) {
    write("r.krg",
          "<< /a (x@{b}@{none}) /b (y\\1) /n [ 1 2 ]\n"
          "   /Environment << /PreferencePath (own) /P (@{Environment:PreferencePath}\\\\p) >>\n"
          "   /Tracing << /DoTracing 1 /TraceToFile 1 >> >>");
    write("open.krg", "<< /a (@{b) >>");
    write("self.krg", "<< /a (@{a}) >>");
    write("section.krg", "<< /Tracing 5 >>");
    write("text.krg", "no registry");
    std::string deep;
    for (int i = 0; i < 300; ++i)
        deep += "<< /a ";
    write("deep.krg", deep + "1" + std::string(900, '>'));
    const Row rows[] = {
        {"registry get r.krg a", 0, "xy\\001\n", ""},
        {"registry get r.krg a --raw", 0, "x@{b}@{none}\n", ""},
        {"registry get r.krg Environment:P", 0, "own\\p\n", ""},
        {"registry get r.krg n", 0, "1\n2\n", ""},
        {"registry get r.krg Components", 0, "", ""},
        {"registry get r.krg Environment", 0, "PreferencePath => (UTFString#1) {own,}", ""},
        {"registry show r.krg", 0, "P => (UTFString#1) {own\\p,}", ""},
        {"registry show --raw r.krg", 0, "P => (String)@{Environment:PreferencePath}\\p", ""},
        {"registry get r.krg none", 1, "", "r.krg: has no entry 'none'"},
        {"registry get r.krg a:b", 1, "", "r.krg: has no entry 'a:b'"},
        {"registry show none.krg", 1, "", "none.krg: can't be opened"},
        {"registry show open.krg", 1, "", "open.krg: has a reference"},
        {"registry show self.krg", 1, "", "self.krg: has a reference"},
        {"registry show section.krg", 1, "", "section.krg: has a Components, Environment or Tracing that"},
        {"registry show text.krg", 1, "", "text.krg: is no dictionary"},
        {"registry show deep.krg", 1, "", "deep.krg: is nested deeper"},
        {"registry get r.krg", 2, "", "PATH"},
    };
    expectOutcomes(rows);
    EXPECT_FALSE(fs::exists(fs::temp_directory_path() / "kvtool_makes_no_folder"));
}

TEST_F(KvToolRegistry, ListsWhatModulesServeAndWhetherTheyLoad) {
    write("good.krg",
          "<< /Components << /Ink << /A (@{M}) /B (scripted_module) >> /S (own_static_dll) >>\n"
          "   /M (scripted_module) >>");
    write("bad.krg", "<< /Components << /n 5 /H (no_exit_module) /P (plain_module) >> >>");
    write("gone.krg", "<< /Components << /Gone (no_such_module) >> >>");
    const std::string head = "module\tid\tpaths\tloads\tKV_Init\tKV_CreateObject\tKV_Exit\n";
    const std::string good = head + "own_static_dll\tS\tS\tin the program\t\t\t\n" +
                             "scripted_module\tInk\tInk:A Ink:B\tyes\tyes\tyes\tyes\n";
    const std::string bad =
        head + "no_exit_module\tH\tH\tyes\tyes\tyes\tno\n" + "plain_module\tP\tP\tyes\tno\tno\tno\n";
    const Row rows[] = {
        {"modules good.krg", 0, good.c_str(), ""},
        {"modules bad.krg", 1, bad.c_str(), "bad.krg: 2 of 2 modules can't be used"},
        {"modules gone.krg", 1, "no_such_module\tGone\tGone\tno (system error ", "1 of 1 modules"},
    };
    expectOutcomes(rows);
    // In a folder of their own.
    fs::create_directory(file("m"));
    const fs::path extension =
        fs::exists(fs::path(KVTOOL).parent_path() / "plain_module.so") ? ".so" : ".dll";
    fs::copy_file(fs::path(KVTOOL).parent_path() / ("plain_module" + extension.string()),
                  file("m") / ("no_such_module" + extension.string()));
    EXPECT_NE(run("modules --folder m gone.krg").out.find("Gone\tyes\tno"), std::string::npos);
}

}  // namespace
