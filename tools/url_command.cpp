#include <kvbase/kvbase.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"

namespace kvtool {
namespace {

struct Arguments {
    std::vector<std::string> texts;
    bool isBack = false;
};

std::string nativePath(KV_URL url) { return std::string(KV_NativePath(url.GetUNCPath())); }

std::string urlOf(const std::string &path) {
    if (path.empty()) throw BadInput("an empty path names no file");
    const KV_URL url(KV_FileSpecFromNative(KV_String(path.c_str())));
    std::string expected = path;
    if (std::filesystem::path::preferred_separator != '/')
        std::replace(expected.begin(), expected.end(), '/', '\\');
    if (nativePath(url) != expected)
        throw BadInput(path, "has no URL: it would come back as " + nativePath(url));
    return std::string(url.GetURL());
}

std::string pathOf(const std::string &text) {
    std::string path = nativePath(KV_URL(KV_String(text.c_str())));
    if (text.rfind("file:", 0) != 0 || path.empty()) throw BadInput(text, "is no URL of a file");
    return path;
}

void convert(const Arguments &args) {
    for (const std::string &text : args.texts)
        std::cout << (args.isBack ? pathOf(text) : urlOf(text)) << '\n';
}

}  // namespace

void addUrlCommand(CLI::App &app) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command = app.add_subcommand("url", "Prints the URL of a file's path, and the way back");
    command->add_option("PATH", args->texts, "the paths, or with --back the URLs")->required();
    command->add_flag("--back", args->isBack, "turn URLs into paths");
    command->callback([args] { convert(*args); });
}

}  // namespace kvtool
