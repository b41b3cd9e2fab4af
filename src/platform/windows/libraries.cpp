#include "platform/platform.h"
#include "platform/windows/system.h"

namespace kv::platform {
namespace {

Library load(const KV_WString &path, DWORD flags, std::int32_t &error) {
    KV_WString native;
    error = ERROR_INVALID_NAME;
    if (path.empty() || !detail::systemPath(path, native)) return nullptr;
    const HMODULE module = LoadLibraryExW(native.c_str(), nullptr, flags);
    error = module != nullptr ? 0 : static_cast<std::int32_t>(GetLastError());
    return module;
}

}  // namespace

Library loadLibrary(const KV_WString &path, std::int32_t &error) { return load(path, 0, error); }

Library loadLibraryFrom(const KV_WString &folder, const KV_WString &name, std::int32_t &error) {
    const KV_WString path = folder + KV_W('\\') + name;
    const bool isPath = path.find(KV_WChar{0}) == KV_WString::npos;
    // Empty, and with that refused, when the system can't make it absolute.
    return load(isPath ? detail::absolutePath(path) : path, LOAD_WITH_ALTERED_SEARCH_PATH, error);
}

void freeLibrary(Library library) {
    if (library != nullptr) FreeLibrary(static_cast<HMODULE>(library));
}

void *findSymbol(Library library, const char *name) {
    const HMODULE module = library != nullptr ? static_cast<HMODULE>(library) : GetModuleHandleW(nullptr);
    return reinterpret_cast<void *>(GetProcAddress(module, name));
}

}  // namespace kv::platform
