#include <kvbase/kvbase.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "file_replace.h"

namespace fs = std::filesystem;

namespace kvtool {
namespace {

struct Arguments {
    std::string folder;
    std::string registry;
};

struct LinkFile {
    std::string name;
    std::uintmax_t size;
    fs::file_time_type written;
};

const std::string kBeginning = "templink_";
const std::string kEnding = ".icc";
constexpr std::size_t kSumSize = 32;

/// What the cache would take for its own, in the order of the names.
std::vector<LinkFile> linkFiles(const std::string &folder) {
    std::vector<LinkFile> files;
    std::error_code error;
    const fs::path path = pathFromUtf8(folder);
    if (!fs::is_directory(path, error))
        throw BadInput(folder, fs::exists(path, error) ? "is no folder" : "doesn't exist");
    for (fs::directory_iterator entry(path, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        const std::string name = utf8FromPath(entry->path().filename());
        std::error_code gone;
        if (!name.starts_with(kBeginning) || !entry->is_regular_file(gone)) continue;
        files.push_back({name, entry->file_size(gone), entry->last_write_time(gone)});
    }
    if (error) throw BadInput(folder, error.message());
    std::sort(files.begin(), files.end(),
              [](const LinkFile &one, const LinkFile &other) { return one.name < other.name; });
    return files;
}

/// The checksum of the link; empty for what a writing that was cut short has left.
std::string sumOf(const LinkFile &file) {
    const bool isWhole =
        file.name.size() == kBeginning.size() + kSumSize + kEnding.size() && file.name.ends_with(kEnding);
    return isWhole ? file.name.substr(kBeginning.size(), kSumSize) : std::string();
}

std::string utc(fs::file_time_type time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(
        std::chrono::time_point_cast<std::chrono::system_clock::duration>(
            std::chrono::file_clock::to_sys(time)));
    char text[40] = "";
    if (const std::tm *parts = std::gmtime(&seconds))
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", parts);
    return text;
}

void list(const Arguments &args) {
    const std::vector<LinkFile> files = linkFiles(args.folder);
    std::cout << "checksum\tbytes\twritten (UTC)\tfile\n";
    for (const LinkFile &file : files)
        std::cout << sumOf(file) << '\t' << file.size << '\t' << utc(file.written) << '\t' << file.name
                  << '\n';
}

/// The folder as the cache takes it, which puts it in front of names.
KV_FileSpec cachingPath(const std::string &folder) {
    const std::string prefix = utf8FromPath(fs::absolute(pathFromUtf8(folder)) / "");
    return KV_FileSpecFromNative(prefix.c_str());
}

void tellRemoved(std::size_t before, std::size_t after) {
    std::cout << before - std::min(before, after) << " link files removed, " << after << " left\n";
}

void clean(const Arguments &args) {
    const std::size_t before = linkFiles(args.folder).size();
    KV_Cacher cacher(nullptr);
    cacher.SetCachingPath(cachingPath(args.folder));
    cacher.RemoveFileCache();
    const std::vector<LinkFile> left = linkFiles(args.folder);
    tellRemoved(before, left.size());
    if (!left.empty())
        throw BadInput(args.folder,
                       "the removal ended at a name that begins with \"templink_\" and can't be deleted");
}

/// A manager whose profile module is at hand. Without that every file would count as bad and go.
std::unique_ptr<KV_COMManager> managerWithProfiles(const std::string &registry) {
    try {
        auto manager = std::make_unique<KV_COMManager>(KV_FileSpecFromNative(registry.c_str()));
        static_cast<KV_IProfile *>(manager->CreateObject("ProfileModule:Profile", "IProfile"))->Release();
        return manager;
    } catch (const KV_Exception &failure) {
        KV_String text;
        throw BadInput(registry, std::string("nothing is removed, for the profile module can't be had: ") +
                                     failure.ToString(text).Ptr());
    }
}

void purgeOld(const Arguments &args) {
    const std::size_t before = linkFiles(args.folder).size();
    const std::unique_ptr<KV_COMManager> manager = managerWithProfiles(args.registry);
    manager->SetCachingPath(cachingPath(args.folder));
    manager->RemoveOldLinks();
    tellRemoved(before, linkFiles(args.folder).size());
}

}  // namespace

void addCacheCommands(CLI::App &app) {
    const auto args = std::make_shared<Arguments>();
    CLI::App &cache = *app.add_subcommand("cache", "Lists and removes the link files of a caching folder");
    cache.require_subcommand(1);
    const auto add = [&](const char *name, const char *help, void (*run)(const Arguments &)) {
        CLI::App *command = cache.add_subcommand(name, help);
        command->add_option("DIR", args->folder, "the folder")->required();
        command->callback([args, run] { run(*args); });
        return command;
    };
    add("list", "Prints checksum, size and time of each link file", list);
    add("clean", "Removes all link files", clean);
    add("purge-old", "Removes the link files of other versions, and what is no profile", purgeOld)
        ->add_option("--registry", args->registry, "the registry file that names the profile module")
        ->required();
    cache.footer("Link files are those whose names begin with \"templink_\"; nothing else is touched.");
}

}  // namespace kvtool
