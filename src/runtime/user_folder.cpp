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

KV_WString kv::detail::userFolderName() {
    const KV_WString data = platform::userDataFolder();
    return data.empty() ? data : data + KV_W("\\Trevane");
}

KV_WString kv::detail::userFolder() {
    KV_WString folder = userFolderName();
    if (folder.empty()) return folder;
    platform::setNormalAttributes(platform::userDataFolder());
    makeFolder(folder);
    return folder;
}
