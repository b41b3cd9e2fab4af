#include "com/link_files.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <random>

#include "com/kv_cacher_objects.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/runtime/kv_platform_facts.h"
#include "platform/platform.h"

namespace kv::detail {
namespace {

using platform::DirectoryOutcome;

const KV_WString kBeginning = KV_W("templink_"), kEnding = KV_W(".icc"), kEverything = KV_W("*");
constexpr const char kVersionMark[] = "Kalvor Version";
constexpr std::size_t kVersionOffset = sizeof kVersionMark - 1 + 4;

// Digits and letters of ASCII alone.
KV_WString wide(const std::string &text) { return {text.begin(), text.end()}; }

std::uint64_t drawnNumber() {
    std::random_device draw;
    return (std::uint64_t{draw()} << 32) | draw();
}

bool holdsThisVersion(const std::string &text) {
    const std::string version = KV_KalvorVersion();
    const std::size_t mark = text.find(kVersionMark);
    if (mark == std::string::npos || text.size() - mark < kVersionOffset) return false;
    return text.compare(mark + kVersionOffset, version.size(), version) == 0;
}

// Whatever the module raises, the file is not one to keep.
bool isOfThisVersion(const KV_WString &file, KV_COMManager &manager) {
    try {
        const Held<KV_IProfile> profile = makeProfile(manager);
        KV_FileSpec spec(file);
        profile->Open(spec, 0);
        const Held<KV_ITextTag> tag(profile->GetTextTag(0));
        if (!tag) return false;
        std::string text;
        tag->GetText(text);
        return holdsThisVersion(text);
    } catch (...) {
        return false;
    }
}

}  // namespace

KV_WString linkFileName(const KV_WString &prefix, const KV_CheckSum &sum) {
    return prefix + kBeginning + wide(sum.GetSum()) + kEnding;
}

KV_WString temporaryLinkFileName(const KV_WString &prefix, const KV_CheckSum &sum) {
    static const std::uint64_t process = drawnNumber();
    static std::atomic<std::uint64_t> file{0};
    return prefix + kBeginning +
           wide(sum.GetSum() + '-' + std::to_string(process) + '-' + std::to_string(++file)) + kEnding;
}

void makeFolders(const KV_WString &folder) {
    constexpr std::size_t kBehindDrive = 3;
    std::size_t separator = kBehindDrive - 1;
    while (platform::createDirectory(folder) == DirectoryOutcome::pathNotFound) {
        separator = folder.find(KV_W('\\'), separator + 1);
        if (separator == KV_WString::npos) return;
        const DirectoryOutcome outcome = platform::createDirectory(folder.substr(0, separator));
        if (outcome == DirectoryOutcome::made || outcome == DirectoryOutcome::exists) continue;
        platform::createDirectory(folder);  // somebody else may have made what was missing
        return;
    }
}

void deleteLinkFiles(const KV_WString &prefix) {
    const KV_WString pattern = prefix + kBeginning + kEverything;
    for (auto names = platform::findNames(pattern); !names.empty(); names = platform::findNames(pattern))
        for (const KV_WString &name : names)
            if (!platform::deleteFile(prefix + name) && platform::pathExists(prefix + name)) return;
}

void deleteOldLinkFiles(const KV_WString &prefix, KV_COMManager &manager) {
    KV_WString pattern(prefix);
    pattern.append(kBeginning).append(kEverything);
    for (const KV_WString &name : platform::findNames(pattern)) {
        const KV_WString file = prefix + name;
        if (!isOfThisVersion(file, manager)) platform::deleteFile(file);
    }
}

}  // namespace kv::detail
