#include "kvbase/runtime/sharelib.h"

#include <string>
#include <string_view>
#include <utility>

#include "kvbase/base/types.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "platform/platform.h"

namespace {

namespace platform = kv::platform;

// In the names of modules that are linked into the running program.
constexpr const char *kLinkedIn = "_static_dll";

KV_WString wide(const KV_SystemString &text) {
    const KV_String &bytes = text.GetSystemString();
    KV_WString units;
    platform::toUnits(platform::kDefaultCodePage, {bytes.Ptr(), bytes.Size()}, units);
    return units;
}

KV_SystemString narrow(const KV_WString &units) {
    std::string text;
    platform::fromUnits(platform::kDefaultCodePage, units, text);
    return KV_String(text.data(), static_cast<std::uint32_t>(text.size()));
}

// The path in the folder of the neighbour; empty when that has none.
KV_WString besideNeighbour(const KV_FileSpec *neighbour, const KV_WString &path) {
    KV_WString folder;
    if (neighbour == nullptr || !neighbour->GetFullPathNameW(folder)) return {};
    KV_FileSpec file(folder);
    file += path;
    return file.GetFileNameW();
}

}  // namespace

KV_SharedLib::KV_SharedLib(KV_SystemString &name, KV_SystemString &path) : m_name(name), m_path(path) {
    SetFullPath();
}

KV_SharedLib::~KV_SharedLib() { Release(); }

void KV_SharedLib::SetFullPath() {
    KV_String file = m_path.GetSystemString();
    if (!file.IsEmpty()) file += '\\';
    file += m_name.GetSystemString();
    file += platform::kLibraryExtension;
    m_fullPath.Set(file);
}

void KV_SharedLib::Load(KV_SystemString &name, KV_SystemString &path, const KV_FileSpec *neighbour) {
    m_name.Set(name);
    m_path.Set(path);
    Load(neighbour);
}

void KV_SharedLib::Load(const KV_FileSpec *neighbour) {
    SetFullPath();
    if (m_loaded || m_name.GetSystemString().Find(kLinkedIn) >= 0) return;

    const KV_WString name = wide(m_name);
    const KV_WString folder = wide(m_path);
    const KV_WString fullPath = wide(m_fullPath);
    std::int32_t error = 0;
    if (!folder.empty()) m_module = platform::loadLibraryFrom(folder, name, error);
    if (m_module == nullptr) m_module = platform::loadLibrary(fullPath, error);
    if (m_module == nullptr) m_module = platform::loadLibrary(name, error);
    const KV_WString beside = m_module == nullptr ? besideNeighbour(neighbour, fullPath) : KV_WString();
    if (!beside.empty()) m_module = platform::loadLibrary(beside, error);
    if (m_module == nullptr)
        throw KV_FileException(m_name.GetSystemString(), KV_FileException::FileNotFound, error, KV_HERE);
    m_loaded = true;
    if (!beside.empty()) m_fullPath = narrow(beside);
}

void KV_SharedLib::Release() {
    platform::freeLibrary(std::exchange(m_module, nullptr));
    m_loaded = false;
}

void *KV_SharedLib::FindSymbol(const char *name) const { return platform::findSymbol(m_module, name); }

void KV_SharedLib::AddDebugD(KV_SystemString & /*text*/) {}
