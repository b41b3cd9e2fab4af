#include "com/comreg.h"

#include <algorithm>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adt/univval/dict_access.h"
#include "kvbase/runtime/kv_exception.h"
#include "platform/platform.h"
#include "runtime/user_folder.h"

namespace {

using kv::detail::asDict;
using kv::detail::DictAccess;
using kv::detail::makeLeaf;
namespace platform = kv::platform;

constexpr const char *kComponents = "Components", *kEnvironment = "Environment", *kTracing = "Tracing";
constexpr std::size_t kMostExpansions = 1000, kMostGrowth = 65536;  // of a value

[[noreturn]] void fail(const char *place, KV_COMException::KV_COM_ErrorID error) {
    throw KV_COMException(place, error, KV_HERE);
}

// The value at the path, the dictionary itself at the path of no keys; null when there is none.
KV_UVal *KV_RegistryGetValue(KV_UValDict &dict, const KV_DictPath &path, KV_UValType type) {
    KV_UVal *const value = path.Size() == 0 ? &dict : dict.GetUVal(path);
    if (value != nullptr && value->GetType() != type)
        fail("KV_RegistryGetValue", KV_COMException::InvalidComponentId);
    return value;
}

KV_UValDict &KV_RegistryGetSection(KV_UValDict &dict, const KV_DictPath &path) {
    KV_UVal *const section = KV_RegistryGetValue(dict, path, KV_UVAL_DICT);
    if (section == nullptr) fail("KV_RegistryGetSection", KV_COMException::NoSuchSection);
    return static_cast<KV_UValDict &>(*section);
}

bool isString(const KV_UVal &value) {
    return value.GetType() == KV_UVAL_STRING || value.GetType() == KV_UVAL_UTFSTRING;
}

KV_UTFString textOf(KV_UVal &value) {
    KV_String text;
    value.GetStrValue(text, 0);
    return text;
}

// The registry beside the running program; an empty path when the program has no name of that kind.
KV_FileSpec besideProgram() {
    constexpr std::size_t kExtension = 4;
    KV_WString path = platform::programPath();
    const std::size_t at = path.rfind(KV_W(".exe"));
    if (path.size() < kExtension || at == KV_WString::npos) return {};
    return path.replace(at, kExtension, KV_W(".krg"));
}

KV_FileSpec chosenFile() {
    const KV_FileSpec beside = besideProgram();
    return beside.IsValid() && beside.FileExists() ? beside : KV_FileSpec(KV_W("kalvor.krg"));
}

// What "Environment" says by itself.
struct KV_RegistryDefaults {
    explicit KV_RegistryDefaults(KV_Registry::UserFolder use) {
        const KV_WString temporary = platform::temporaryFolder();
        const KV_WString folder =
            use == KV_Registry::UserFolder::made ? kv::detail::userFolder() : kv::detail::userFolderName();
        const bool isRecent = platform::osVersionAtLeast({5, 0, 0, 0});
        tmpPath = !temporary.empty() ? temporary
                  : isRecent         ? KV_WString(KV_W("c:\\winnt\\temp\\"))
                                     : KV_WString(KV_W("c:\\windows\\temp\\"));
        currentPath = platform::currentFolder();
        preferencePath = !folder.empty() ? KV_FileSpec(folder) : currentPath;
    }
    KV_FileSpec preferencePath, tmpPath, currentPath;
};

void define(KV_UValDict &environment, const KV_DictPath &key, const KV_FileSpec &path) {
    if (environment.GetUVal(key) == nullptr)
        environment.DefineUVal(key, KV_UVAL_UTFSTRING, 1, new KV_UTFString(path.GetFileName()));
}

}  // namespace

KV_Registry::KV_Registry() : m_file(chosenFile()) { read(UserFolder::made); }

KV_Registry::KV_Registry(const KV_FileSpec &file, UserFolder folder) : m_file(file) { read(folder); }

void KV_Registry::read(UserFolder folder) {
    const KV_RegistryDefaults defaults(folder);
    m_raw.ReadTextFile(m_file, "");
    for (const char *section : {kComponents, kTracing, kEnvironment})
        NewSection(section);
    KV_UValDict &environment = KV_RegistryGetSection(m_raw, kEnvironment);
    define(environment, "PreferencePath", defaults.preferencePath);
    define(environment, "TmpPath", defaults.tmpPath);
    clean();
}

// Cleans the raw form, in the order of its keys. How deep it is the file decides, so nothing recurses.
void KV_Registry::clean() {
    struct Level {
        KV_UValDict::Map::iterator next, end;
        KV_UValDict *target;
    };
    std::vector<Level> levels;
    const auto enter = [&levels](KV_UValDict &raw, KV_UValDict &target) {
        levels.push_back({raw.GetValuePtr()->begin(), raw.GetValuePtr()->end(), &target});
    };
    enter(m_raw, m_clean);
    Budget budget;
    while (!levels.empty()) {
        if (levels.back().next == levels.back().end) {
            levels.pop_back();
            continue;
        }
        const auto &[key, value] = *levels.back().next++;
        KV_UValDict &target = *levels.back().target;
        if (KV_UValDict *dict = asDict(value)) {
            KV_UValDict *inner =
                asDict(target.GetValuePtr()->count(key) != 0 ? (*target.GetValuePtr())[key] : nullptr);
            if (inner == nullptr) {
                auto made = std::make_unique<KV_UValDict>(16384U);
                inner = made.get();
                DictAccess::put(target, std::string(key), std::move(made));
            }
            enter(*dict, *inner);
        } else if (value != nullptr && isString(*value)) {
            auto text = std::make_unique<KV_UTFString>(expanded(textOf(*value), budget));
            DictAccess::put(target, std::string(key), makeLeaf(KV_UVAL_UTFSTRING, 1, text.release()));
        } else if (value != nullptr) {
            DictAccess::put(target, std::string(key), std::unique_ptr<KV_UVal>(value->DeepCopy()));
        }
    }
}

// The string at a path, which is empty when there is none.
KV_String KV_Registry::textAt(const KV_String &path) {
    if (path.IsEmpty()) return {};
    KV_UVal *value = m_clean.GetUVal(path);
    if (value == nullptr) value = m_raw.GetUVal(path);
    return value != nullptr && isString(*value) ? KV_String(value->GetCStringValue(0)) : KV_String();
}

// Expands all references, again and again until there are none. Counted in bytes.
KV_UTFString KV_Registry::expanded(const KV_UTFString &value, Budget &budget) {
    std::string text(value.Ptr(), value.Size());
    const std::size_t longest = text.size() + kMostGrowth;
    std::size_t from = 0;
    for (std::size_t count = 0;;) {
        const std::size_t begin = text.find("@{", from);
        if (begin == text.npos && from == 0) break;
        if (begin == text.npos) {
            from = 0;  // two replacements together may have made a reference
            continue;
        }
        const std::size_t end = text.find('}', begin);
        if (end == text.npos) fail("KV_Registry::CleanString", KV_COMException::SyntaxError);
        const KV_String path(text.data() + begin + 2, static_cast<std::uint32_t>(end - begin - 2));
        const KV_String inserted = textAt(path);
        text.replace(begin, end + 1 - begin, inserted.Ptr(), inserted.Size());
        from = begin;
        if (++count > kMostExpansions || text.size() > longest || budget.expansions == 0)
            fail("KV_Registry::CleanString", KV_COMException::SyntaxError);
        --budget.expansions;
    }
    const std::size_t growth = text.size() - std::min(text.size(), std::size_t{value.Size()});
    if (growth > budget.bytes) fail("KV_Registry::CleanString", KV_COMException::SyntaxError);
    budget.bytes -= growth;
    return KV_String(text.data(), static_cast<std::uint32_t>(text.size()));
}

KV_UTFString *KV_Registry::GetEntry(const KV_DictPath &section, const KV_DictPath &key) {
    KV_UVal *const value = KV_RegistryGetValue(m_clean, section + key, KV_UVAL_UTFSTRING);
    if (value == nullptr) fail("KV_Registry::GetEntry", KV_COMException::NoSuchValue);
    return new KV_UTFString(textOf(*value));
}

KV_UValDict *KV_Registry::GetSection(const KV_DictPath &section) {
    return &KV_RegistryGetSection(m_clean, section);
}

KV_UValDict *KV_Registry::NewSection(const KV_DictPath &section) {
    if (KV_UValDict *existing = section.Size() == 0 ? &m_clean : asDict(m_clean.GetUVal(section)))
        return existing;
    if (m_raw.DefineUValDict(section) == nullptr)
        fail("KV_Registry::NewSection", KV_COMException::RegistryNotCreated);
    KV_UValDict *const made = m_clean.DefineUValDict(section);
    if (made == nullptr) fail("KV_Registry::Newsection", KV_COMException::RegistryNotCreated);
    return made;
}

KV_UTFString *KV_Registry::NewEntry(const KV_DictPath &section, const KV_DictPath &key, KV_UTFString *value) {
    KV_UValDict &raw = KV_RegistryGetSection(m_raw, section);
    std::unique_ptr<KV_UTFString> owned(value);
    const KV_UTFString text(*value);
    if (raw.DefineUVal(key, KV_UVAL_UTFSTRING, 1, owned.release()) == nullptr)
        fail("KV_Registry::NewEntry", KV_COMException::InvalidComponentId);
    Budget budget;
    owned = std::make_unique<KV_UTFString>(expanded(text, budget));
    KV_UTFString *const clean = owned.get();
    const KV_DictPath path = section + key;
    if (m_clean.DefineUVal(path, KV_UVAL_UTFSTRING, 1, owned.release()) == nullptr)
        fail("KV_Registry::NewEntry", KV_COMException::InvalidComponentId);
    return clean;
}

void KV_Registry::GetFileSpec(const KV_String &key, KV_FileSpec &out) {
    const std::unique_ptr<KV_UTFString> entry(GetEntry(kEnvironment, key));
    out = KV_FileSpec(KV_String(entry->Ptr(), entry->Size()));
}

std::uint32_t KV_Registry::GetTracingMask(const KV_String &module) {
    KV_UVal *const value =
        KV_RegistryGetValue(m_clean, KV_DictPath(kTracing) + KV_DictPath(module), KV_UVAL_LONG);
    if (value == nullptr) fail("KV_Registry::GetTracingMask", KV_COMException::NoSuchValue);
    return static_cast<std::uint32_t>(value->GetLongValue(0));
}

std::int32_t KV_Registry::switchAt(const char *key) {
    KV_UVal *const value = m_clean.GetUVal(KV_DictPath(kTracing) + key);
    return value != nullptr && value->GetType() == KV_UVAL_LONG ? value->GetLongValue(0) : 0;
}

std::int32_t KV_Registry::DoTracing() { return switchAt("DoTracing"); }

std::int32_t KV_Registry::TraceToFile() { return switchAt("TraceToFile"); }

void KV_Registry::TraceFileName(KV_String &out) {
    KV_UVal *const value = m_clean.GetUVal(KV_DictPath(kTracing) + "TraceFileName");
    const KV_String base =
        value != nullptr && isString(*value) ? KV_String(textOf(*value)) : KV_String("KalvorLog");
    const std::tm now = platform::localTime(std::time(nullptr));
    out.Format("%s_%04d%02d%02d_%02d%02d%02d.txt", base.Ptr(), now.tm_year + 1900, now.tm_mon + 1,
               now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec);
}
