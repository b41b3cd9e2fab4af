#include "kvbase/com/commngr.h"

#include <string_view>
#include <utility>

#include "adt/univval/dict_access.h"
#include "com/comreg.h"
#include "kvbase/com/commod.h"
#include "kvbase/com/kv_cacher.h"
#include "kvbase/com/kv_profile_compare.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_tracer.h"

namespace {

constexpr const char *kComponents = "Components";
constexpr const char *kTracer = "KvBaseTrace";

[[noreturn]] void fail(const char *place, KV_COMException::KV_COM_ErrorID error) {
    throw KV_COMException(place, error, KV_HERE);
}

}  // namespace

// ---- making and ending -----------------------------------------------------------------------------------

KV_COMManager::KV_COMManager() : KV_COMManager(std::make_unique<KV_Registry>(), nullptr) {}

KV_COMManager::KV_COMManager(const KV_FileSpec &registryFile)
    : KV_COMManager(std::make_unique<KV_Registry>(registryFile),
                    std::make_unique<KV_FileSpec>(registryFile)) {}

KV_COMManager::KV_COMManager(std::unique_ptr<KV_Registry> registry, std::unique_ptr<KV_FileSpec> path)
    : m_path(std::move(path)), m_registry(std::move(registry)) {
    CollectKeys();
    startTracing();
    m_cacher = std::make_unique<KV_Cacher>(this);
    m_profileCompare = std::make_unique<KV_ProfileCompare>(this);
    KV_FileSpec targets;
    GetRegFileSpec("PreferencePath", targets);
    SetTargetDirPath(targets += KV_WString(KV_W("TonvaleX\\Targets\\")));
}

KV_COMManager::~KV_COMManager() {
    m_cacher.reset();
    m_profileCompare.reset();
    m_forgotten.clear();
    while (!m_components.empty())  // in the order of their names; what is on its way out serves no longer
        m_components.extract(m_components.begin());
}

void KV_COMManager::startTracing() {
    if (m_registry->DoTracing() == 0) return;
    KV_String name;
    m_registry->TraceFileName(name);
    m_traceFile.isBegun = KV_Tracer::StartTracing(m_registry->TraceToFile() == 1, name);
    KV_Tracer::SetTracing(*this, kTracer);
}

KV_COMManager::TraceFile::~TraceFile() {
    if (isBegun) KV_Tracer::StopTracing();
}

void KV_Tracer::SetTracing(KV_COMManager &manager, const char *name) {
    try {
        SetTracing(name, manager.GetTracingMask(name));
    } catch (const KV_COMException &) {  // the registry says nothing about this tracer
    }
}

// ---- components ------------------------------------------------------------------------------------------

// Takes all strings of the section for file names of modules. How deep it is the file decides, so nothing
// recurses, and the paths' lengths together are limited.
void KV_COMManager::CollectKeys() {
    struct Level {
        KV_UValDict::Map::const_iterator next, end;
        std::size_t pathSize;
    };
    std::string path;  // each key with a separator behind it
    std::vector<Level> levels;
    const auto enter = [&](KV_UValDict &dict) {
        levels.push_back({dict.GetValuePtr()->begin(), dict.GetValuePtr()->end(), path.size()});
    };
    std::size_t left = std::size_t{1} << 24;
    enter(*m_registry->GetSection(kComponents));
    while (!levels.empty()) {
        Level &level = levels.back();
        path.resize(level.pathSize);
        if (level.next == level.end) {
            levels.pop_back();
            continue;
        }
        const auto &[key, value] = *level.next++;
        (path += key) += KV_DictPath::GetSeparator();
        if (KV_UValDict *dict = kv::detail::asDict(value)) {
            enter(*dict);
        } else if (value != nullptr && value->GetType() == KV_UVAL_UTFSTRING) {
            if (path.size() > left) fail("KV_COMManager::CollectKeys", KV_COMException::SyntaxError);
            left -= path.size();
            addComponent(value->GetCStringValue(0), path.c_str());
        }
    }
}

void KV_COMManager::addComponent(const std::string &file, const KV_DictPath &path) {
    const auto known = m_components.find(file);
    if (known != m_components.end()) return known->second->BaseID(path);
    Components made;
    auto &[name, component] = *made.try_emplace(file).first;
    component = std::make_unique<KV_COMComponent>(name.c_str(), path);
    m_components.merge(made);
}

// Null when the registry, or the list of components, has none.
KV_COMComponent *KV_COMManager::Component(const KV_DictPath &path) const {
    try {
        const std::unique_ptr<KV_UTFString> file(RegistryGetEntry(kComponents, path));
        const auto at = m_components.find(std::string_view(file->Ptr()));
        return at != m_components.end() ? at->second.get() : nullptr;
    } catch (const KV_Exception &) {
        return nullptr;
    }
}

// Paths and keys go by value in the interface. NOLINTBEGIN(performance-unnecessary-value-param)

void *KV_COMManager::CreateObject(KV_DictPath path, const char *interfaceName) {
    void *object = nullptr;
    {
        const KV_Synch lock(&m_mutex);
        KV_DictPath entry(path);
        if (KV_COMComponent *component = Component(--entry)) {
            component->LoadComponent(this);
            object = component->CreateObject(path, interfaceName);
        }
    }
    if (object == nullptr) fail("KV_COMManager::CreateObject", KV_COMException::ComponentNotFound);
    return object;
}

void KV_COMManager::NewComponent(char *file, KV_DictPath path) {
    const KV_DictPath section(kComponents);
    m_registry->GetSection(section);  // throws while the new string is nobody's yet
    m_registry->NewEntry(section, path, new KV_UTFString(file));
    addComponent(file != nullptr ? file : "", path);
}

void KV_COMManager::AddComponents(char * /*file*/, KV_DictPath /*path*/, bool /*flag*/) {}

void KV_COMManager::DeleteComponent(KV_DictPath path) {
    const KV_String name = path;
    const auto at = m_components.find(std::string_view(name.Ptr(), name.Size()));
    if (at == m_components.end()) fail("KV_COMManager::DeleteComponent", KV_COMException::InvalidComponentId);
    m_forgotten.emplace_back();  // first, since it may throw
    m_forgotten.back() = m_components.extract(at);
}

std::uint32_t KV_COMManager::ComponentCount(KV_DictPath section) {
    return static_cast<std::uint32_t>(RegistryGetSection(section)->GetSize());
}

void KV_COMManager::IncreaseUseCount(KV_DictPath path) {
    if (KV_COMComponent *component = Component(path)) component->use();
}

void KV_COMManager::DecreaseUseCount(KV_DictPath path) {
    if (KV_COMComponent *component = Component(path)) component->release();
}

std::uint32_t KV_COMManager::UseCount(KV_DictPath id) {
    for (const auto &[file, component] : m_components)
        if (component->Id() == id) return component->GetUseCount();
    return 0;
}

std::uint32_t KV_COMManager::TotalUseCount() {
    std::uint32_t total = 0;
    for (const auto &[file, component] : m_components)
        total += component->GetUseCount();
    return total;
}

// ---- registry --------------------------------------------------------------------------------------------

void KV_COMManager::ReadRegistry(const KV_FileSpec &file, KV_UValDict &raw, KV_UValDict &expanded) {
    KV_Registry registry(file, KV_Registry::UserFolder::told);
    raw.GetValuePtr()->swap(*registry.Raw().GetValuePtr());
    expanded.GetValuePtr()->swap(*registry.GetSection("")->GetValuePtr());
}

KV_UTFString *KV_COMManager::RegistryGetEntry(KV_DictPath section, KV_DictPath key) const {
    return m_registry->GetEntry(section, key);
}

KV_UValDict *KV_COMManager::RegistryGetSection(KV_DictPath section) {
    return m_registry->GetSection(section);
}

KV_UTFString *KV_COMManager::RegistryNewEntry(KV_DictPath section, KV_DictPath key, KV_UTFString *value) {
    return m_registry->NewEntry(section, key, value);
}

void KV_COMManager::GetRegFileSpec(KV_String key, KV_FileSpec &out) const {
    m_registry->GetFileSpec(key, out);
}

std::uint32_t KV_COMManager::GetTracingMask(KV_String module) const {
    return m_registry->GetTracingMask(module);
}

// NOLINTEND(performance-unnecessary-value-param)
