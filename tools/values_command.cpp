#include <kvbase/kvbase.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include "command.h"
#include "utf8_text.h"
#include "value_compare.h"
#include "value_file.h"
#include "value_print.h"
#include "value_types.h"

namespace kvtool {
namespace {

struct Arguments {
    std::string file;
    std::string other;
    std::string path;
    std::string output;
    std::string type;
    std::string form;
    std::vector<std::string> values;
    std::optional<std::int32_t> index;
    bool force = false;
};

KV_DictPath pathOf(const Arguments &args) { return KV_DictPath(args.path.c_str()); }

std::string quoted(const std::string &path) { return "'" + path + "'"; }

KV_UVal &findOrFail(ValueFile &from, const Arguments &args) {
    KV_UVal *value = findValue(from.dict(), pathOf(args));
    if (value == nullptr) throw BadInput(from.file(), "has no entry " + quoted(args.path));
    return *value;
}

void save(ValueFile &values, const Arguments &args) {
    values.write(args.output.empty() ? values.file() : args.output, args.force);
}

void show(const Arguments &args) {
    ValueFile values(args.file);
    printTree(values.dict(), args.file);
}

std::int32_t checkedIndex(KV_UVal &value, const Arguments &args) {
    const std::int32_t count = std::max<std::int32_t>(1, value.GetDimension());
    if (*args.index < 0 || *args.index >= count)
        throw BadInput(args.file, quoted(args.path) + " has no element " + std::to_string(*args.index) +
                                      ": they are counted from 0 to " + std::to_string(count - 1));
    return *args.index;
}

void get(const Arguments &args) {
    ValueFile values(args.file);
    KV_UVal &value = findOrFail(values, args);
    if (value.GetType() == KV_UVAL_DICT) {
        if (!args.type.empty())
            throw BadInput(args.file, quoted(args.path) + " is a dictionary and has no " + args.type);
        if (args.index)
            throw BadInput(args.file, quoted(args.path) + " is a dictionary and has no element " +
                                          std::to_string(*args.index));
        printTree(static_cast<KV_UValDict &>(value), args.file);
        return;
    }
    const KV_UValType type = args.type.empty() ? value.GetType() : typeOfName(args.type);
    const bool toNumber = type < KV_UVAL_STRING;
    if (toNumber && value.GetFamily() != KV_UVAL_FAMILY_NUMBER)
        throw BadInput(args.file,
                       quoted(args.path) + " is a " + typeName(value.GetType()) + " and has no " + args.type);
    std::int32_t first = 0;
    std::int32_t last = std::max<std::int32_t>(1, value.GetDimension()) - 1;
    if (args.index) first = last = checkedIndex(value, args);
    for (std::int32_t i = first; i <= last; ++i)
        std::cout << elementText(value, type, i) << '\n';
}

KV_UVal &define(ValueFile &values, const Arguments &args, KV_UVal *old) {
    if (pathOf(args).Size() == 0) throw BadInput(args.file, "an empty path names no entry");
    if (old != nullptr && old->GetType() == KV_UVAL_DICT)
        throw BadInput(args.file, quoted(args.path) + " is a dictionary; remove it first");
    KV_UValType type = typeOfName(args.type);
    if (args.type.empty()) {
        // One text among the values makes all of them text, one decimal all decimals.
        type = old != nullptr ? old->GetType() : KV_UVAL_LONG;
        if (old == nullptr)
            for (const std::string &text : args.values)
                type = std::max(type, typeOfText(text));
    }
    const auto count = static_cast<std::int32_t>(args.values.size());
    KV_UVal *value = values.dict().DefineUVal(pathOf(args), type, count > 1 ? count : 0, nullptr);
    if (value == nullptr)
        throw BadInput(args.file, quoted(args.path) + " leads through an entry that is no dictionary");
    return *value;
}

void setFrom(KV_UVal &value, const std::string &text, std::int32_t index, const Arguments &args) {
    try {
        setElement(value, text, index);
    } catch (const BadInput &error) {
        throw BadInput(args.file, quoted(args.path) + ": " + error.what());
    }
}

void set(const Arguments &args) {
    ValueFile values(args.file);
    KV_UVal *old = findValue(values.dict(), pathOf(args));
    if (args.index) {
        if (old == nullptr) throw BadInput(args.file, "has no entry " + quoted(args.path));
        if (!args.type.empty())
            throw CLI::ValidationError("--index", "goes into a value as it is, without --type");
        if (args.values.size() != 1) throw CLI::ValidationError("--index", "takes one value");
        setFrom(*old, args.values[0], checkedIndex(*old, args), args);
    } else {
        KV_UVal &value = define(values, args, old);
        for (std::size_t i = 0; i < args.values.size(); ++i)
            setFrom(value, args.values[i], static_cast<std::int32_t>(i), args);
    }
    save(values, args);
}

// What the parser has not taken: values, and "--", behind which everything is one. Before it a word with a
// dash in front is an option that doesn't exist, unless it is a number.
void addFurtherValues(const std::vector<std::string> &words, Arguments &args) {
    bool allAreValues = false;
    for (const std::string &word : words) {
        if (!allAreValues && word == "--") {
            allAreValues = true;
            continue;
        }
        if (!allAreValues && word.starts_with('-') && typeOfText(word) >= KV_UVAL_STRING)
            throw CLI::ExtrasError({word});
        args.values.push_back(word);
    }
}

void removeEntry(const Arguments &args) {
    ValueFile values(args.file);
    findOrFail(values, args);
    values.dict().RemoveUVal(pathOf(args));
    save(values, args);
}

void merge(const Arguments &args) {
    ValueFile values(args.file);
    ValueFile other(args.other);
    if (!args.force) other.refuseMisread();
    other.dict().MoveTo(&values.dict());
    save(values, args);
}

void copy(const Arguments &args) {
    ValueFile from(args.file);
    findOrFail(from, args);
    if (!args.force) from.refuseMisread();
    ValueFile to = ValueFile::openOrNew(args.other, from.form());
    if (from.dict().CopyUValTo(pathOf(args), &to.dict()) == nullptr)
        throw BadInput(args.other, quoted(args.path) + " leads through an entry that is no dictionary");
    to.write(args.other, args.force);
}

void convert(const Arguments &args) {
    ValueFile values(args.file);
    for (const ValueForm form : {ValueForm::Text, ValueForm::Binary})
        if (args.form == formName(form)) values.setForm(form);
    values.write(args.other, args.force);
}

void check(const Arguments &args) {
    ValueFile values(args.file);
    const TreeSize size = sizeOf(values.dict());
    std::cout << args.file << ": " << size.entries << " entries in " << size.depth << " levels\n";
    for (const std::string &line : values.unkept())
        std::cout << "  a rewrite drops " << line << '\n';
    for (const std::string &line : values.misread())
        std::cout << "  " << visible(line) << '\n';
    if (values.isTooDeep())
        throw BadInput(args.file, "is nested deeper than the " + std::to_string(kDeepestTree) +
                                      " levels that are written");
    const std::vector<std::string> lost = values.unwritable();
    for (const std::string &line : lost)
        std::cout << "  " << visible(line) << '\n';
    if (!values.misread().empty() || !lost.empty())
        throw BadInput(args.file, "its values are not all read, or not written, as they are");
    std::cout << "  its values are written and read back unchanged\n";
}

using Run = void (*)(const Arguments &);

CLI::App &addCommand(CLI::App &app, const char *name, const char *help, Run run,
                     const std::shared_ptr<Arguments> &args) {
    CLI::App *command = app.add_subcommand(name, help);
    command->callback([run, args] { run(*args); });
    return *command;
}

void addWriteOptions(CLI::App &command, Arguments &args, bool withOutput) {
    if (withOutput)
        command.add_option("-o,--output", args.output,
                           "write to this file and leave the one that was read as it is");
    command.add_flag("--force", args.force,
                     "write also when something is lost: comments, decimals beyond six, pointers, what was "
                     "not read as it is written");
}

void addPath(CLI::App &command, Arguments &args) {
    command.add_option("PATH", args.path, "keys joined with ':', such as press:inks")->required();
}

std::string checkType(const std::string &name) {
    return typeOfName(name) == KV_UVAL_NONE ? "'" + name + "' is no type: " + typeNames() : std::string();
}

}  // namespace

void addValuesCommands(CLI::App &app) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *values =
        app.add_subcommand("values", "Shows, queries, changes and checks value files in text or binary form");
    values->require_subcommand(1);

    CLI::App &showCommand = addCommand(*values, "show", "Prints a file as a tree", show, args);
    showCommand.add_option("FILE", args->file)->required();

    CLI::App &getCommand = addCommand(
        *values, "get", "Prints the entry at a path: a tree, or a line for each element", get, args);
    getCommand.add_option("FILE", args->file)->required();
    addPath(getCommand, *args);
    getCommand.add_option("--as", args->type, "convert to this type: " + typeNames())->check(checkType);
    getCommand.add_option("--index", args->index, "this element only, counted from 0");

    CLI::App &setCommand =
        addCommand(*values, "set", "Sets the entry at a path; several values make an array", set, args);
    setCommand.add_option("FILE", args->file)->required();
    addPath(setCommand, *args);
    // Only the first VALUE is an option of the parser's: it would take a list of several in brackets apart.
    setCommand.add_option("VALUE", args->values, "the value, or the first of an array")
        ->required()
        ->expected(1)
        ->allow_extra_args(false);
    setCommand.allow_extras();
    // The parser takes what stands behind "--" as it is only while an argument of its own can come. So this
    // one takes none.
    setCommand.add_option("MORE", args->values, "further values; behind '--' also such as begin with '-'")
        ->expected(1)
        ->allow_extra_args(false)
        ->check([](const std::string &) { return "is taken below"; });
    setCommand.validate_positionals();
    setCommand.callback([&setCommand, args] {
        addFurtherValues(setCommand.remaining(), *args);
        set(*args);
    });
    setCommand
        .add_option(
            "--type", args->type,
            "the entry's type: " + typeNames() + ". Default: the type that it has, or the look of the value")
        ->check(checkType);
    setCommand.add_option("--index", args->index, "set this element only, counted from 0");
    addWriteOptions(setCommand, *args, true);

    CLI::App &removeCommand =
        addCommand(*values, "remove", "Removes the entry at a path with all below it", removeEntry, args);
    removeCommand.add_option("FILE", args->file)->required();
    addPath(removeCommand, *args);
    addWriteOptions(removeCommand, *args, true);

    CLI::App &mergeCommand =
        addCommand(*values, "merge",
                   "Merges the entries of OTHER into FILE; where both have one, OTHER's wins", merge, args);
    mergeCommand.add_option("FILE", args->file)->required();
    mergeCommand.add_option("OTHER", args->other)->required();
    addWriteOptions(mergeCommand, *args, true);

    CLI::App &copyCommand =
        addCommand(*values, "copy",
                   "Copies the entry at a path from FILE to the same path of OTHER, which is made if need be",
                   copy, args);
    copyCommand.add_option("FILE", args->file)->required();
    addPath(copyCommand, *args);
    copyCommand.add_option("OTHER", args->other)->required();
    addWriteOptions(copyCommand, *args, false);

    CLI::App &convertCommand = addCommand(
        *values, "convert", "Writes the values of FILE to OTHER, in text or in binary form", convert, args);
    convertCommand.add_option("FILE", args->file)->required();
    convertCommand.add_option("OTHER", args->other)->required();
    convertCommand.add_option("--to", args->form, "the form of OTHER")
        ->required()
        ->check(CLI::IsMember({formName(ValueForm::Text), formName(ValueForm::Binary)}));
    addWriteOptions(convertCommand, *args, false);

    CLI::App &checkCommand =
        addCommand(*values, "check",
                   "Reads a file, and tells its size, what is not read as it is written, and what writing it "
                   "again would lose",
                   check, args);
    checkCommand.add_option("FILE", args->file)->required();
}

}  // namespace kvtool
