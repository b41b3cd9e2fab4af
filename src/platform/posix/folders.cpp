#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace kv::platform {
namespace {

// The value of a variable that names an absolute folder, else empty.
std::string folderOf(const char *variable) {
    const char *value = std::getenv(variable);
    return value != nullptr && *value == '/' ? value : std::string();
}

}  // namespace

KV_WString programPath() {
    std::vector<char> path(256);
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
        if (length < 0) return {};
        if (static_cast<std::size_t>(length) < path.size())
            return fromNativePath({path.data(), static_cast<std::size_t>(length)});
        path.resize(2 * path.size());  // it may have been cut
    }
}

KV_WString currentFolder() {
    const std::unique_ptr<char, decltype(&std::free)> path(getcwd(nullptr, 0), std::free);
    return path ? fromNativePath(path.get()) : KV_WString();
}

KV_WString temporaryFolder() {
    std::string folder = folderOf("TMPDIR");
    if (folder.empty()) folder = "/tmp";
    if (folder.back() != '/') folder += '/';
    return fromNativePath(folder);
}

KV_WString userDataFolder() {
    for (const char *variable : {"APPDATA", "XDG_DATA_HOME"})
        if (const std::string folder = folderOf(variable); !folder.empty()) return fromNativePath(folder);
    const std::string home = folderOf("HOME");
    return home.empty() ? KV_WString() : fromNativePath(home + "/.local/share");
}

}  // namespace kv::platform
