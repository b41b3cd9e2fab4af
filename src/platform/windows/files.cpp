#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "platform/platform.h"
#include "platform/utf16.h"
#include "platform/windows/system.h"

namespace kv::detail {

bool systemPath(const KV_WString &path, KV_WString &out) {
    // A directory's path must leave room for a name of 12 units.
    constexpr std::size_t kLongestPlain = MAX_PATH - 12;
    const auto begins = [](const KV_WString &text, const KV_WChar *with) { return text.rfind(with, 0) == 0; };
    out = path;
    if (path.find(KV_WChar{0}) != KV_WString::npos) return false;
    if (path.empty() || begins(path, L"\\\\?\\") || begins(path, L"\\\\.\\")) return true;
    const KV_WString absolute = absolutePath(path);
    const bool fits = std::max(path.size(), absolute.size()) < kLongestPlain;
    // Where there is no absolute path, the call itself says why.
    if (fits || absolute.empty() || begins(absolute, L"\\\\.\\")) return true;
    out = begins(absolute, L"\\\\") ? L"\\\\?\\UNC\\" + absolute.substr(2) : L"\\\\?\\" + absolute;
    return true;
}

KV_WString absolutePath(const KV_WString &path) {
    return filledBy(
        [&path](KV_WChar *text, DWORD size) { return GetFullPathNameW(path.c_str(), size, text, nullptr); });
}

}  // namespace kv::detail

namespace kv::platform {
namespace {

using detail::systemPath;

struct CloseSearch {
    using pointer = HANDLE;
    void operator()(HANDLE search) const { FindClose(search); }
};
using Search = std::unique_ptr<void, CloseSearch>;

Search searchFor(const KV_WString &pattern, WIN32_FIND_DATAW &found) {
    KV_WString native;
    if (!systemPath(pattern, native)) return nullptr;
    const HANDLE search = FindFirstFileW(native.c_str(), &found);
    return Search(search != INVALID_HANDLE_VALUE ? search : nullptr);
}

bool isDots(const WIN32_FIND_DATAW &found) {
    return std::wcscmp(found.cFileName, L".") == 0 || std::wcscmp(found.cFileName, L"..") == 0;
}

// Moves on past "." and "..". False at the end.
bool skipDots(const Search &search, WIN32_FIND_DATAW &found) {
    while (isDots(found))
        if (FindNextFileW(search.get(), &found) == 0) return false;
    return true;
}

// Only what the C library is known to understand, since it may end the process over anything else: one of r,
// w and a, and at most one letter of each other group.
bool isMode(std::string_view mode) {
    constexpr std::string_view kGroups[] = {"rwa", "+", "bt", "cn", "SR", "T", "D"};
    std::ptrdiff_t known = 0;
    for (const std::string_view group : kGroups) {
        const auto count =
            std::count_if(mode.begin(), mode.end(), [group](char c) { return group.find(c) != group.npos; });
        if (count > 1) return false;
        known += count;
    }
    return !mode.empty() && kGroups[0].find(mode[0]) != std::string_view::npos && known == std::ssize(mode);
}

}  // namespace

std::FILE *openFile(const KV_WString &path, const char *mode, std::int32_t &error) {
    KV_WString native;
    std::FILE *file = nullptr;
    if (!isMode(mode) || !systemPath(path, native)) {
        error = EINVAL;
        return nullptr;
    }
    KV_WString wideMode(mode, mode + std::strlen(mode));
    wideMode += KV_W('N');  // not inherited
    error = _wfopen_s(&file, native.c_str(), wideMode.c_str());
    return file;
}

bool seekFile(std::FILE *file, std::int64_t offset, int origin) {
    return _fseeki64(file, offset, origin) == 0;
}

std::int64_t tellFile(std::FILE *file) { return _ftelli64(file); }

bool deleteFile(const KV_WString &path) {
    KV_WString native;
    return systemPath(path, native) && DeleteFileW(native.c_str()) != 0;
}

bool renameFile(const KV_WString &from, const KV_WString &to) {
    KV_WString nativeFrom, nativeTo;
    return systemPath(from, nativeFrom) && systemPath(to, nativeTo) &&
           MoveFileExW(nativeFrom.c_str(), nativeTo.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

DirectoryOutcome createDirectory(const KV_WString &path) {
    KV_WString native;
    if (!systemPath(path, native)) return DirectoryOutcome::other;
    if (CreateDirectoryW(native.c_str(), nullptr) != 0) return DirectoryOutcome::made;
    switch (GetLastError()) {
    case ERROR_ALREADY_EXISTS:
        return DirectoryOutcome::exists;
    case ERROR_PATH_NOT_FOUND:
        return DirectoryOutcome::pathNotFound;
    default:
        return DirectoryOutcome::other;
    }
}

void setNormalAttributes(const KV_WString &path) {
    KV_WString native;
    if (systemPath(path, native)) SetFileAttributesW(native.c_str(), FILE_ATTRIBUTE_NORMAL);
}

bool pathExists(const KV_WString &path) {
    WIN32_FIND_DATAW found;
    const Search search = searchFor(path, found);
    return search != nullptr && skipDots(search, found);
}

std::vector<KV_WString> findNames(const KV_WString &pattern) {
    std::vector<KV_WString> names;
    WIN32_FIND_DATAW found;
    const Search search = searchFor(pattern, found);
    if (search == nullptr) return names;
    do {
        if (!isDots(found)) names.emplace_back(found.cFileName);
    } while (FindNextFileW(search.get(), &found) != 0);
    std::sort(names.begin(), names.end());
    return names;
}

std::string nativePath(const KV_WString &path) {
    std::string native;
    detail::appendUtf8(path, native);
    return native;
}

KV_WString fromNativePath(std::string_view path) {
    KV_WString units;
    detail::appendUnits(path, units);
    std::replace(units.begin(), units.end(), KV_W('/'), KV_W('\\'));
    return units;
}

}  // namespace kv::platform
