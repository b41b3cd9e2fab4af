#include "platform/platform.h"
#include "platform/windows/system.h"

namespace kv::platform {

namespace {

// Whether a path begins with a drive and its root, or with a server.
bool isAbsolute(const KV_WString &path) { return path.find(L":\\") == 1 || path.find(L"\\\\") == 0; }

}  // namespace

KV_WString programPath() {
    // Cut to the buffer's size it may lack its zero; that length asks for a larger one.
    return detail::filledBy(
        [](KV_WChar *text, DWORD size) { return GetModuleFileNameW(nullptr, text, size); });
}

KV_WString currentFolder() {
    return detail::filledBy([](KV_WChar *text, DWORD size) { return GetCurrentDirectoryW(size, text); });
}

KV_WString temporaryFolder() {
    return detail::filledBy([](KV_WChar *text, DWORD size) { return GetTempPathW(size, text); });
}

KV_WString userDataFolder() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, L"Volatile Environment", 0, KEY_READ, &key) != ERROR_SUCCESS)
        return {};
    KV_WString folder;
    DWORD type = 0, bytes = 0;
    if (RegQueryValueExW(key, L"APPDATA", nullptr, &type, nullptr, &bytes) == ERROR_SUCCESS &&
        type == REG_SZ) {
        folder.resize(bytes / sizeof(KV_WChar));
        if (RegQueryValueExW(key, L"APPDATA", nullptr, &type, reinterpret_cast<BYTE *>(folder.data()),
                             &bytes) != ERROR_SUCCESS)
            folder.clear();
        folder.resize(folder.find_last_not_of(KV_WChar{0}) + 1);  // the zero counts in the bytes
    }
    RegCloseKey(key);
    return isAbsolute(folder) ? folder : KV_WString();
}

}  // namespace kv::platform
