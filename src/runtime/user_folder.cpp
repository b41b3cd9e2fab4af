#include "runtime/user_folder.h"

#include <cstddef>

#include "platform/platform.h"

namespace {

namespace platform = kv::platform;

// Makes a folder, and first the folders that it lies in. A new account may have none of them.
void makeFolder(const KV_WString &path) {
    platform::DirectoryOutcome outcome = platform::createDirectory(path);
    const std::size_t separator = path.rfind(KV_W('\\'));
    if (outcome == platform::DirectoryOutcome::pathNotFound && separator != KV_WString::npos) {
        makeFolder(path.substr(0, separator));
        outcome = platform::createDirectory(path);
    }
    if (outcome == platform::DirectoryOutcome::made) platform::setNormalAttributes(path);
}

}  // namespace

KV_WString kv::detail::userFolder() {
    const KV_WString data = platform::userDataFolder();
    if (data.empty()) return {};
    platform::setNormalAttributes(data);
    KV_WString folder = data + KV_W("\\Trevane");
    makeFolder(folder);
    return folder;
}
