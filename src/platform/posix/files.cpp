#include <dirent.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "platform/platform.h"
#include "platform/utf16.h"
#include "platform/wildcard.h"

namespace kv::platform {
namespace {

static_assert(sizeof(off_t) == 8, "files have positions of 64 bits");

// False when the path holds a zero unit: the system would take the text before it for the path.
bool systemPath(const KV_WString &path, std::string &out) {
    out = nativePath(path);
    return out.find('\0') == std::string::npos;
}

bool entryExists(const std::string &path) {
    struct stat facts = {};
    return lstat(path.c_str(), &facts) == 0;
}

// The last component and what stands before it. A slash that came in separates too, as it does for the
// system.
struct Place {
    std::string folder;
    KV_WString name;
};

Place placeOf(const std::string &path) {
    const std::size_t behind = path.rfind('/') + 1;  // 0 when there is none
    Place place{behind == 0 ? "." : path.substr(0, behind), {}};
    detail::appendUnits(std::string_view(path).substr(behind), place.name);
    return place;
}

struct CloseDirectory {
    void operator()(DIR *directory) const { closedir(directory); }
};

// The names of the folder that match, most of them at the most, in the order in which they lie there.
std::vector<KV_WString> matchingNames(const Place &place, std::size_t most) {
    std::vector<KV_WString> names;
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(place.folder.c_str()));
    if (!directory) return names;
    while (names.size() < most) {
        const dirent *entry = readdir(directory.get());
        if (entry == nullptr) break;
        KV_WString name = fromNativePath(entry->d_name);
        const bool isDots = name == KV_W(".") || name == KV_W("..");
        const bool isTold = nativePath(name) == entry->d_name;  // else it names another file, or none
        if (!isDots && isTold && detail::matchesWildcards(place.name, name)) names.push_back(std::move(name));
    }
    return names;
}

}  // namespace

std::FILE *openFile(const KV_WString &path, const char *mode, std::int32_t &error) {
    std::string native;
    if (!systemPath(path, native)) {
        error = EINVAL;
        return nullptr;
    }
    std::FILE *file =
        std::fopen(native.c_str(), (std::string(mode) + "e").c_str());  // e: closed in a child program
    if (file == nullptr) {
        error = errno;
        return nullptr;
    }
    struct stat facts = {};
    if (fstat(fileno(file), &facts) == 0 && S_ISDIR(facts.st_mode)) {
        std::fclose(file);
        error = EISDIR;
        return nullptr;
    }
    error = 0;
    return file;
}

bool seekFile(std::FILE *file, std::int64_t offset, int origin) { return fseeko(file, offset, origin) == 0; }

std::int64_t tellFile(std::FILE *file) { return ftello(file); }

bool deleteFile(const KV_WString &path) {
    std::string native;
    return systemPath(path, native) && unlink(native.c_str()) == 0;
}

bool renameFile(const KV_WString &from, const KV_WString &to) {
    std::string nativeFrom, nativeTo;
    return systemPath(from, nativeFrom) && systemPath(to, nativeTo) &&
           std::rename(nativeFrom.c_str(), nativeTo.c_str()) == 0;
}

DirectoryOutcome createDirectory(const KV_WString &path) {
    constexpr mode_t kAll = 0777;  // what the process's mask leaves of it
    std::string native;
    if (!systemPath(path, native)) return DirectoryOutcome::other;
    if (mkdir(native.c_str(), kAll) == 0) return DirectoryOutcome::made;
    switch (errno) {
    case EEXIST:
        return DirectoryOutcome::exists;
    case ENOENT:
    case ENOTDIR:
        return DirectoryOutcome::pathNotFound;
    default:
        return DirectoryOutcome::other;
    }
}

void setNormalAttributes(const KV_WString & /*path*/) {}

bool pathExists(const KV_WString &path) {
    std::string native;
    if (!systemPath(path, native)) return false;
    const Place place = placeOf(native);
    if (place.name.empty()) return false;
    return detail::hasWildcards(place.name) ? !matchingNames(place, 1).empty() : entryExists(native);
}

std::vector<KV_WString> findNames(const KV_WString &pattern) {
    std::string native;
    if (!systemPath(pattern, native)) return {};
    const Place place = placeOf(native);
    if (!detail::hasWildcards(place.name)) {
        if (place.name.empty() || !entryExists(native)) return {};
        return {place.name};
    }
    std::vector<KV_WString> names = matchingNames(place, static_cast<std::size_t>(-1));
    std::sort(names.begin(), names.end());
    return names;
}

std::string nativePath(const KV_WString &path) {
    std::string native;
    detail::appendUtf8(path, native);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

KV_WString fromNativePath(std::string_view path) {
    KV_WString units;
    detail::appendUnits(path, units);
    std::replace(units.begin(), units.end(), KV_WChar('/'), KV_WChar('\\'));
    return units;
}

}  // namespace kv::platform
