#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "kvbase/univval/kv_uval.h"
#include "kvbase/univval/kv_uval_dict.h"

namespace kv::detail {

/// A key on its way down a map, for Map::lower_bound. It notes where it meets itself, which saves the last
/// comparison of Map::find, and mostly needs no more than the first bytes to tell two keys apart.
struct MapKey {
    explicit MapKey(std::string_view key) : text(key) {}
    std::string_view text;
    mutable const std::string *met = nullptr;
};

inline bool operator<(const std::string &there, const MapKey &key) {
    if (key.met != nullptr) return &there != key.met;  // all else that is still passed lies before it
    const auto first = static_cast<unsigned char>(*there.c_str());
    const auto wanted = static_cast<unsigned char>(*key.text.data());  // the terminator, when it is empty
    if (first != wanted) return first < wanted;
    const int order = there.compare(key.text);
    if (order == 0) key.met = &there;
    return order < 0;
}

/// The value as a dictionary, null when it is none.
inline KV_UValDict *asDict(KV_UVal *value) {
    return value != nullptr && value->GetType() == KV_UVAL_DICT ? static_cast<KV_UValDict *>(value) : nullptr;
}

/// A new leaf value by the constructors of kv_uval_leaf.h; null for a type outside 2 to 12. A block of data
/// that the value would adopt is released when memory runs out.
std::unique_ptr<KV_UVal> makeLeaf(KV_UValType type, std::int32_t dimension, void *data);

/// The inner way into a dictionary, for the readers of value files.
struct DictAccess {
    /// Stores value at this level under the key as it stands, and deletes the value that stood there. The
    /// value is new and may be null. The fastest order of calls is that of ascending keys.
    static void put(KV_UValDict &dict, std::string &&key, std::unique_ptr<KV_UVal> value);
    /// The same at the path that a text is, up to its first zero when the separator is in it. Gives back the
    /// value that finds no place: the path is empty or runs through a value that is no dictionary.
    static std::unique_ptr<KV_UVal> putAtPath(KV_UValDict &dict, std::string_view path,
                                              std::unique_ptr<KV_UVal> value);

    /// Moves all entries of from into target, merging as MoveTo does. target must not lie within from: nobody
    /// looks.
    static void mergeApart(KV_UValDict &from, KV_UValDict &target);

    /// Whether node is tree itself or a dictionary somewhere in it. Allocates nothing.
    static bool holds(KV_UValDict &tree, const KV_UValDict &node) noexcept;

    /// A list of dictionaries, the last one first, that needs no memory: they are chained through the values
    /// of their miss pairs, so that a dictionary stands in one list at a time. An empty list is null, and so
    /// is what pop then gives.
    static void push(KV_UVal *&list, KV_UValDict &dict) noexcept {
        dict.m_miss.second = std::exchange(list, &dict);
    }
    static KV_UValDict *pop(KV_UVal *&list) noexcept {
        auto *dict = static_cast<KV_UValDict *>(list);
        if (dict != nullptr) list = std::exchange(dict->m_miss.second, nullptr);
        return dict;
    }
};

}  // namespace kv::detail
