#include "kvbase/univval/kv_uval_dict.h"

#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "adt/univval/dict_access.h"

using kv::detail::asDict;
using kv::detail::DictAccess;

namespace {

constexpr unsigned int kCapacity = 16384;

}  // namespace

KV_UValDict::KV_UValDict(unsigned int /*capacity*/)
    : KV_UVal(KV_UVAL_DICT, KV_UVAL_FAMILY_DICT), m_miss(std::string(), nullptr) {
    setDimension(0);
}

KV_UValDict::KV_UValDict(const KV_UValDict &other) : KV_UValDict(kCapacity) {
    struct Level {
        const KV_UValDict *from;
        KV_UValDict *to;
    };
    std::vector<Level> open{{&other, this}};
    while (!open.empty()) {
        const Level level = open.back();
        open.pop_back();
        level.to->SetNrItemsToPrint(level.from->GetNrItemsToPrint());
        Map &map = level.to->m_map;
        for (const auto &[key, value] : level.from->m_map) {
            KV_UVal *&copy = map.emplace_hint(map.end(), key, nullptr)->second;
            if (const KV_UValDict *dict = asDict(value)) {
                auto *inner = new KV_UValDict(kCapacity);
                copy = inner;
                open.push_back({dict, inner});
            } else if (value != nullptr) {
                copy = value->DeepCopy();
            }
        }
    }
}

KV_UValDict &KV_UValDict::operator=(const KV_UValDict &other) {
    if (this != &other) {
        KV_UValDict copy(other);  // first of all: other may lie within this one
        m_map.swap(copy.m_map);
        SetNrItemsToPrint(copy.GetNrItemsToPrint());
    }
    return *this;
}

KV_UValDict::~KV_UValDict() { Clear(); }

KV_UVal *KV_UValDict::DeepCopy() { return new KV_UValDict(*this); }

// Neither recurses nor allocates. Takes the last entry first, the reverse of how reading makes a tree, so
// that allocators hand the memory out in order again.
void KV_UValDict::Clear() {
    KV_UVal *open = nullptr;  // the dictionaries that are still to be taken down
    DictAccess::push(open, *this);
    while (open != nullptr) {
        auto *level = static_cast<KV_UValDict *>(open);
        if (level->m_map.empty()) {
            DictAccess::pop(open);
            if (level != this) delete level;
            continue;
        }
        KV_UVal *value = level->m_map.extract(std::prev(level->m_map.end())).mapped();
        if (KV_UValDict *dict = asDict(value)) {
            DictAccess::push(open, *dict);
        } else {
            delete value;
        }
    }
}

// The entry at path; the one at which the path stops when it runs through a value that is no dictionary or
// through null; null when a key is missing.
const KV_UValDict::Map::value_type *KV_UValDict::FindUValPath(const KV_DictPath &path) const {
    const Map *level = &m_map;
    const Map::value_type *found = nullptr;
    const char *key = path.NextKey(nullptr);
    for (int left = path.Size(); left > 0; --left) {
        const std::string_view name(key);
        const kv::detail::MapKey wanted(name);
        const auto entry = level->lower_bound(wanted);
        if (wanted.met == nullptr) return nullptr;
        found = &*entry;
        const KV_UValDict *dict = asDict(found->second);
        if (dict == nullptr) break;
        level = &dict->m_map;
        key += name.size() + 1;
    }
    return found;
}

// The entry at path and the map in which it stands; that map's end when there is none. With create the entry,
// with a null value, and the dictionaries on the way are made, unless the path runs through a value that is
// no dictionary, or through the one that is shut.
KV_UValDict::Map::iterator KV_UValDict::FindUValPathIterator(const KV_DictPath &path, bool create,
                                                             Map *&container, const KV_UValDict *shut) {
    container = &m_map;
    const char *key = path.NextKey(nullptr);
    for (int left = path.Size(); left > 0; --left) {
        const std::string_view name(key);
        auto entry = container->lower_bound(name);
        if (entry == container->end() || entry->first != name) {
            if (!create) break;
            entry = container->emplace_hint(entry, name, nullptr);
        }
        if (left == 1) return entry;
        if (entry->second == nullptr && create) entry->second = new KV_UValDict(kCapacity);
        KV_UValDict *dict = asDict(entry->second);
        if (dict == nullptr || dict == shut) break;
        container = &dict->m_map;
        key += name.size() + 1;
    }
    return container->end();
}

KV_UValDict::Map::iterator KV_UValDict::IteratorAt(const char *key) {
    return key != nullptr ? m_map.find(std::string_view(key)) : m_map.end();
}

KV_UValDict::Pair KV_UValDict::KVPairAt(const char *key) {
    const auto entry = IteratorAt(key);
    return entry != m_map.end() ? Pair(*entry) : m_miss;
}

KV_UVal *KV_UValDict::DefineUVal(const KV_DictPath &path, KV_UValType type, std::int32_t dimension,
                                 void *data) {
    if (type == KV_UVAL_DICT) return DefineUValDict(path);
    std::unique_ptr<KV_UVal> value = kv::detail::makeLeaf(type, dimension, data);
    return value != nullptr && SetUVal(path, value.get()) != nullptr ? value.release() : nullptr;
}

KV_UValDict *KV_UValDict::DefineUValDict(const KV_DictPath &path) {
    Map *level = nullptr;
    const auto entry = FindUValPathIterator(path, true, level);
    if (entry == level->end()) return nullptr;
    if (entry->second == nullptr) entry->second = new KV_UValDict(kCapacity);
    return asDict(entry->second);
}

KV_UVal *KV_UValDict::SetUVal(const KV_DictPath &path, KV_UVal *value) {
    KV_UValDict *dict = asDict(value);
    if (dict != nullptr && DictAccess::holds(*dict, *this)) return nullptr;
    Map *level = nullptr;
    const auto entry = FindUValPathIterator(path, true, level, dict);
    if (entry == level->end()) return nullptr;
    if (entry->second != value) delete std::exchange(entry->second, value);
    return value;
}

KV_UVal *KV_UValDict::GetUVal(const KV_DictPath &path) {
    const Map::value_type *entry = FindUValPath(path);
    return entry != nullptr ? entry->second : nullptr;
}

void KV_UValDict::RemoveUVal(const KV_DictPath &path) {
    Map *level = nullptr;
    const auto entry = FindUValPathIterator(path, false, level);
    if (entry == level->end()) return;
    const std::unique_ptr<KV_UVal> value(entry->second);
    level->erase(entry);
}

void DictAccess::put(KV_UValDict &dict, std::string &&key, std::unique_ptr<KV_UVal> value) {
    KV_UVal *&place = dict.m_map.try_emplace(dict.m_map.end(), std::move(key), nullptr)->second;
    const std::unique_ptr<KV_UVal> former(std::exchange(place, value.release()));
}

std::unique_ptr<KV_UVal> DictAccess::putAtPath(KV_UValDict &dict, std::string_view path,
                                               std::unique_ptr<KV_UVal> value) {
    KV_UValDict::Map *level = &dict.m_map;
    auto entry = level->end();
    if (path.find(KV_DictPath::GetSeparator()) != path.npos) {
        entry = dict.FindUValPathIterator(KV_DictPath(std::string(path).c_str()), true, level);
    } else if (!path.empty()) {
        entry = level->emplace_hint(level->end(), path, nullptr);
    }
    if (entry == level->end()) return value;
    const std::unique_ptr<KV_UVal> former(std::exchange(entry->second, value.release()));
    return nullptr;
}
