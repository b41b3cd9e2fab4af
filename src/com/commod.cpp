#include "kvbase/com/commod.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "kvbase/com/commngr.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/text/kv_system_string.h"
#include "platform/platform.h"
#include "runtime/trace_line.h"

namespace {

using namespace kv::detail;
namespace platform = kv::platform;

[[noreturn]] void fail(const char *place) {
    throw KV_COMException(place, KV_COMException::InvalidComponent, KV_HERE);
}

// A path in the encoding that libraries are named in. Not a conversion of KV_SystemString, which a program
// has to initialise first.
KV_SystemString systemText(const KV_FileSpec &path) {
    std::string text;
    platform::fromUnits(platform::kDefaultCodePage, path.GetFileNameW(), text);
    return KV_String(text.data(), static_cast<std::uint32_t>(text.size()));
}

template <class Function>
Function KV_COMGetFp(const KV_SharedLib &library, const char *name) {
    void *const symbol = library.FindSymbol(name);
    if (symbol == nullptr) fail("KV_COMGetFp");
    return reinterpret_cast<Function>(symbol);
}

// False when it was 0 already.
bool countDown(std::atomic<std::uint32_t> &count) {
    std::uint32_t before = count;
    while (before != 0 && !count.compare_exchange_weak(before, before - 1)) {
    }
    return before != 0;
}

// True while it lives.
class Flag {
public:
    explicit Flag(bool &flag) : m_flag(flag) { m_flag = true; }
    Flag(const Flag &) = delete;
    Flag &operator=(const Flag &) = delete;
    ~Flag() { m_flag = false; }

private:
    bool &m_flag;
};

}  // namespace

KV_COMComponent::KV_COMComponent(const char *file, KV_DictPath path) : m_file(file), m_id(std::move(path)) {}

KV_COMComponent::~KV_COMComponent() {
    if (const std::uint32_t count = m_lockCount)
        traceLine(kTraceError, "LOCK ERROR: ", "module ", m_file, " has lock count ", count);
    if (const std::uint32_t count = m_useCount)
        traceLine(kTraceError, "RELEASE ERROR: ", count, " objects from module ", m_file,
                  " were not released!");
    if (m_exitModule == nullptr) return;
    try {
        UnloadComponent();
    } catch (...) {  // of KV_Exit: nobody is left to tell
        traceLine(kTraceError, "KV_Exit of module ", m_file, " raised an exception");
    }
}

std::uint32_t KV_COMComponent::GetUseCount() const {
    const std::uint32_t count = m_useCount;
    if (count != 0)
        traceLine(kTraceDetail, "Usecount: ", count, " objects from module ", m_file,
                  " are not yet released!");
    return count;
}

void KV_COMComponent::LoadComponent(KV_COMManager *manager) {
    if (m_isLoading || m_useCount != 0 || m_createObject != nullptr || m_exitModule != nullptr) return;
    const Flag loading(m_isLoading);
    const KV_FileSpec *const folder = manager->GetLibPath();
    KV_SystemString name = systemText(KV_String(m_file));
    KV_SystemString path = folder != nullptr ? systemText(*folder) : KV_SystemString();
    m_library.Load(name, path, manager->GetPath());
    m_context = KV_COMGetFp<InitFunction>(m_library, "KV_Init")(manager, m_id);
    m_createObject = KV_COMGetFp<CreateObjectFunction>(m_library, "KV_CreateObject");
    m_exitModule = KV_COMGetFp<ExitFunction>(m_library, "KV_Exit");
}

void KV_COMComponent::UnloadComponent() {
    release();
    if (m_useCount != 0 || m_lockCount != 0) return;
    m_exitModule(m_context);
    m_library.Release();
    m_createObject = nullptr;
    m_exitModule = nullptr;
}

void KV_COMComponent::release() { countDown(m_useCount); }

void KV_COMComponent::Lock(KV_COMManager * /*manager*/) {
    if (m_useCount == 0) fail("KV_COMComponent::Lock");
    ++m_lockCount;
}

void KV_COMComponent::Unlock() {
    if (!countDown(m_lockCount)) fail("KV_COMComponent::Unlock");
}

void KV_COMComponent::BaseID(const KV_DictPath &path) {
    const int most = std::min(m_id.Size(), path.Size());
    const char *own = m_id.NextKey(nullptr), *other = path.NextKey(nullptr);
    int common = 0;
    for (; common < most && std::strcmp(own, other) == 0; ++common) {
        own = m_id.NextKey(own);
        other = path.NextKey(other);
    }
    while (m_id.Size() > common)
        --m_id;
}

KV_DictPath KV_COMComponent::SubID(const KV_DictPath &path) const {
    const KV_String text = path;
    const char *key = path.NextKey(nullptr);
    std::size_t skipped = 0;
    for (int i = std::min(m_id.Size(), path.Size()); i > 0; --i) {
        skipped += std::strlen(key) + 1;
        key = path.NextKey(key);
    }
    return text.Ptr() + skipped;
}

void *KV_COMComponent::CreateObject(const KV_DictPath &path, const char *interfaceName) {
    return m_createObject != nullptr ? m_createObject(m_context, SubID(path), interfaceName) : nullptr;
}
