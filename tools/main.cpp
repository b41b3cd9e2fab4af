#include <kvbase/kvbase.h>

#include <exception>
#include <iostream>
#include <new>

#include "bad_input.h"
#include "command.h"
#include "utf8_text.h"

// Exit codes: 0 done, 1 bad input (the message names the file), 2 bad usage, 3 judged and not passed.
namespace {

constexpr int kBadInput = 1;
constexpr int kBadUsage = 2;
constexpr int kNotPassed = 3;

int fail(const std::string &text, int code = kBadInput) {
    std::cerr << "kvtool: " << kvtool::visible(text) << '\n';
    return code;
}

int run(int argc, char **argv) {
    CLI::App app("Reads, changes and checks the files of the kvbase library.", "kvtool");
    app.set_version_flag("--version", std::string("kvtool ") + KV_KalvorVersion());
    app.require_subcommand(1);
    app.footer(
        "Exit codes: 0 done, 1 bad input, 2 bad usage, 3 judged and not passed. 'kvtool COMMAND --help' "
        "tells "
        "more.");
    kvtool::addValuesCommands(app);
    kvtool::addCipherCommands(app);
    kvtool::addChecksumCommand(app);
    kvtool::addUrlCommand(app);
    kvtool::addCacheCommands(app);
    kvtool::addRegistryCommands(app);
    kvtool::addModulesCommand(app);
    kvtool::addColorCommands(app);
    kvtool::addDotgainCommand(app);
    kvtool::addProofCommand(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (app.exit(error) != 0) return kBadUsage;
    }
    std::cout.flush();
    return std::cout ? 0 : fail("standard output: the text could not be written whole");
}

}  // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc &) {
        return fail("not enough memory");
    } catch (const kvtool::NotPassed &notPassed) {
        return fail(notPassed.what(), kNotPassed);
    } catch (const std::exception &error) {
        return fail(error.what());
    } catch (const KV_Exception &error) {
        KV_String text;
        return fail(error.ToString(text).Ptr());
    }
}
