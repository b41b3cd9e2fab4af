#include <kvbase/kvbase.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

#include "command.h"
#include "registry_file.h"
#include "utf8_text.h"
#include "value_print.h"
#include "value_types.h"

namespace kvtool {
namespace {

struct Arguments {
    std::string file;
    std::string path;
    bool raw = false;
};

void show(const Arguments &args) {
    RegistryFile registry(args.file);
    printTree(args.raw ? registry.raw : registry.expanded, args.file);
}

void get(const Arguments &args) {
    RegistryFile registry(args.file);
    KV_UVal *value = findValue(args.raw ? registry.raw : registry.expanded, KV_DictPath(args.path.c_str()));
    if (value == nullptr) throw BadInput(args.file, "has no entry '" + args.path + "'");
    if (value->GetType() == KV_UVAL_DICT) return printTree(static_cast<KV_UValDict &>(*value), args.file);
    for (std::int32_t i = 0; i < std::max<std::int32_t>(1, value->GetDimension()); ++i)
        std::cout << visible(elementText(*value, value->GetType(), i)) << '\n';
}

}  // namespace

void addRegistryCommands(CLI::App &app) {
    const auto args = std::make_shared<Arguments>();
    CLI::App &registry = *app.add_subcommand(
        "registry", "Shows what a registry says, with its defaults and with references expanded");
    registry.require_subcommand(1);
    const auto add = [&](const char *name, const char *help, void (*run)(const Arguments &)) {
        CLI::App *command = registry.add_subcommand(name, help);
        command->add_option("FILE", args->file)->required();
        command->add_flag("--raw", args->raw, "leave references as they are written");
        command->callback([args, run] { run(*args); });
        return command;
    };
    add("show", "Prints all of it as a tree", show);
    add("get", "Prints the entry at a path: a tree, or a line for each element", get)
        ->add_option("PATH", args->path, "keys joined with ':', such as Environment:TmpPath")
        ->required();
}

}  // namespace kvtool
