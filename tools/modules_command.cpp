#include <kvbase/kvbase.h>

#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "color_columns.h"
#include "command.h"
#include "registry_file.h"
#include "utf8_text.h"

namespace kvtool {
namespace {

using Keys = std::vector<std::string>;
/// The paths of each module, by its file name.
using Modules = std::map<std::string, std::vector<Keys>>;

struct Arguments {
    std::string file;
    std::string folder;
};

// As a manager does: every string is the file name of a module.
void collect(KV_UValDict &section, Keys &path, Modules &modules) {
    for (const auto &[key, value] : *section.GetValuePtr()) {
        path.push_back(key);
        if (value != nullptr && value->GetType() == KV_UVAL_DICT)
            collect(static_cast<KV_UValDict &>(*value), path, modules);
        else if (value != nullptr && value->GetType() == KV_UVAL_UTFSTRING)
            modules[value->GetCStringValue(0)].push_back(path);
        path.pop_back();
    }
}

std::string joined(const Keys &keys) {
    std::string text;
    for (const std::string &key : keys)
        text += (text.empty() ? "" : ":") + key;
    return text;
}

Keys commonOf(const std::vector<Keys> &paths) {
    Keys common = paths.front();
    for (const Keys &path : paths) {
        std::size_t same = 0;
        while (same < common.size() && same < path.size() && common[same] == path[same])
            ++same;
        common.resize(same);
    }
    return common;
}

// Of the library "yes", "no" or that it would be part of a program; then whether each entry point is there.
std::vector<std::string> stateOf(const std::string &module, const Arguments &args, bool &isGood) {
    isGood = module.find("_static_dll") != std::string::npos;
    if (isGood) return {"in the program", "", "", ""};
    KV_SharedLib library;
    try {
        // This program's own encoding is UTF-8 on every system.
        KV_SystemString name{KV_String(module.c_str())};
        KV_SystemString folder{KV_FileSpecFromNative(args.folder.c_str()).GetFileName()};
        const KV_FileSpec neighbour = KV_FileSpecFromNative(args.file.c_str());
        library.Load(name, folder, &neighbour);
    } catch (const KV_FileException &error) {
        return {"no (system error " + std::to_string(error.GetOSError()) + ")", "", "", ""};
    }
    std::vector<std::string> state = {"yes"};
    isGood = true;
    for (const char *entryPoint : {"KV_Init", "KV_CreateObject", "KV_Exit"}) {
        const bool isThere = library.FindSymbol(entryPoint) != nullptr;
        isGood = isGood && isThere;
        state.emplace_back(isThere ? "yes" : "no");
    }
    return state;
}

void list(const Arguments &args) {
    RegistryFile registry(args.file);
    Modules modules;
    Keys path;
    collect(*static_cast<KV_UValDict *>(registry.expanded.GetUVal("Components")), path, modules);
    std::cout << "module\tid\tpaths\tloads\tKV_Init\tKV_CreateObject\tKV_Exit\n";
    std::size_t bad = 0;
    for (const auto &[module, paths] : modules) {
        std::string serves;
        for (const Keys &keys : paths)
            serves += (serves.empty() ? "" : " ") + joined(keys);
        bool isGood = false;
        std::vector<std::string> cells = {module, joined(commonOf(paths)), serves};
        const std::vector<std::string> state = stateOf(module, args, isGood);
        cells.insert(cells.end(), state.begin(), state.end());
        std::cout << visible(tabbed(cells)) << '\n';
        bad += isGood ? 0 : 1;
    }
    if (bad != 0)
        throw BadInput(args.file, std::to_string(bad) + " of " + std::to_string(modules.size()) +
                                      " modules can't be used");
}

}  // namespace

void addModulesCommand(CLI::App &app) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command = app.add_subcommand(
        "modules",
        "Lists the component modules of a registry: what each serves, whether it loads, and which "
        "entry points it has. Loads them, but calls none of these");
    command->add_option("FILE", args->file, "the registry")->required();
    command->add_option("--folder", args->folder,
                        "the folder of the modules. Without it, and after it, they are looked for beside "
                        "kvtool, in the current folder, as the system does it, and beside FILE");
    command->callback([args] { list(*args); });
}

}  // namespace kvtool
