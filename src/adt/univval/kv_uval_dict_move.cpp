#include <memory>
#include <utility>

#include "adt/univval/dict_access.h"
#include "kvbase/univval/kv_uval_dict.h"

namespace kv::detail {

/// Entries on their way from one dictionary into another. Merges below the first level wait on a list, so
/// that nothing recurses; dictionaries that have to make room are deleted last, since the source may lie in
/// one of them. Allocates nothing, so that no entry under way is ever lost.
class DictMove {
public:
    explicit DictMove(bool skipsNull = false) : m_skipsNull(skipsNull) {}
    DictMove(const DictMove &) = delete;
    DictMove &operator=(const DictMove &) = delete;
    ~DictMove() {
        while (const KV_UValDict *dict = DictAccess::pop(m_replaced))
            delete dict;
    }

    /// Puts a detached entry into target's level and returns the value that then stands there.
    KV_UVal *place(KV_UValDict::Map::node_type &&node, KV_UValDict &target) noexcept {
        auto result = target.m_map.insert(std::move(node));
        KV_UVal *&there = result.position->second;
        if (result.inserted) return there;
        std::unique_ptr<KV_UVal> moved(result.node.mapped());
        KV_UValDict *from = asDict(moved.get());
        KV_UValDict *into = asDict(there);
        if (from != nullptr && into != nullptr) {
            (void)moved.release();
            DictAccess::push(m_open, *into);
            DictAccess::push(m_open, *from);
            return into;
        }
        std::unique_ptr<KV_UVal> former(std::exchange(there, moved.release()));
        if (into != nullptr) {
            (void)former.release();
            DictAccess::push(m_replaced, *into);
        }
        return there;
    }

    /// Moves the entries of one level, but for the one that holds staying.
    void level(KV_UValDict::Map &from, KV_UValDict &target, const KV_UVal *staying = nullptr) noexcept {
        for (auto entry = from.begin(); entry != from.end();) {
            const auto here = entry++;
            const bool stays = here->second == nullptr ? m_skipsNull : here->second == staying;
            if (stays) continue;
            place(from.extract(here), target);
        }
    }

    /// Works off the waiting merges; false when there were none.
    bool finish() noexcept {
        const bool isMerging = m_open != nullptr;
        while (m_open != nullptr) {
            const std::unique_ptr<KV_UValDict> from(DictAccess::pop(m_open));
            KV_UValDict *into = DictAccess::pop(m_open);
            level(from->m_map, *into);
        }
        return isMerging;
    }

private:
    bool m_skipsNull;
    // Each waiting merge: the detached dictionary, then the one in the target that takes its entries. None
    // stands here twice, for each level of the target is filled once before the list is worked off.
    KV_UVal *m_open = nullptr;
    KV_UVal *m_replaced = nullptr;  // detached dictionaries
};

bool DictAccess::holds(KV_UValDict &tree, const KV_UValDict &node) noexcept {
    bool found = false;
    KV_UVal *open = nullptr;
    push(open, tree);
    while (const KV_UValDict *dict = pop(open)) {
        found = found || dict == &node;
        if (found) continue;  // only unchains the rest
        for (const auto &entry : dict->m_map)
            if (KV_UValDict *inner = asDict(entry.second)) push(open, *inner);
    }
    return found;
}

void DictAccess::mergeApart(KV_UValDict &from, KV_UValDict &target) {
    DictMove move;
    move.level(from.m_map, target);
    move.finish();
}

namespace {

/// A detached entry, which goes back where it was unless somebody takes it. A way into the target that was
/// begun in its place, and on which nothing stands yet, makes room.
struct Detached {
    Detached(KV_UValDict::Map &map, KV_UValDict::Map::iterator entry) : home(map), node(map.extract(entry)) {}
    Detached(const Detached &) = delete;
    Detached &operator=(const Detached &) = delete;
    ~Detached() {
        const auto result = home.insert(std::move(node));
        if (result.node) delete std::exchange(result.position->second, result.node.mapped());
    }
    KV_UValDict::Map &home;
    KV_UValDict::Map::node_type node;
};

}  // namespace
}  // namespace kv::detail

using kv::detail::asDict;
using kv::detail::DictAccess;
using kv::detail::DictMove;

void KV_UValDict::CopyTo(KV_UValDict *target) {
    if (target == nullptr || target == this) return;
    KV_UValDict copy(*this);  // target may lie within this one, or this one within target
    DictMove move(true);
    move.level(copy.m_map, *target);
    move.finish();
}

KV_UVal *KV_UValDict::CopyUValTo(const KV_DictPath &path, KV_UValDict *target) {
    Map *level = nullptr;
    const auto entry = FindUValPathIterator(path, false, level);
    if (target == nullptr || entry == level->end() || entry->second == nullptr) return nullptr;
    KV_UValDict *from = asDict(entry->second);
    KV_UValDict *into = asDict(target->GetUVal(path));
    if (from != nullptr && into != nullptr) {
        from->CopyTo(into);
        return into;
    }
    std::unique_ptr<KV_UVal> copy(entry->second->DeepCopy());
    return copy != nullptr && target->SetUVal(path, copy.get()) != nullptr ? copy.release() : nullptr;
}

void KV_UValDict::MoveTo(KV_UValDict *target) {
    if (target == nullptr || target == this) return;
    const KV_UVal *staying = nullptr;
    for (const auto &entry : m_map) {
        KV_UValDict *dict = asDict(entry.second);
        if (dict != nullptr && DictAccess::holds(*dict, *target)) staying = dict;
    }
    DictMove move;
    do {
        move.level(m_map, *target, staying);
    } while (move.finish());  // a merge may have brought new entries, when this dictionary lies in target
}

KV_UVal *KV_UValDict::MoveUValTo(const KV_DictPath &path, KV_UValDict *target) {
    Map *level = nullptr;
    const auto entry = FindUValPathIterator(path, false, level);
    if (target == nullptr || entry == level->end()) return nullptr;
    KV_UValDict *dict = asDict(entry->second);
    if (dict != nullptr && DictAccess::holds(*dict, *target)) return nullptr;

    DictMove move;
    KV_DictPath parent(path);
    --parent;
    kv::detail::Detached detached(*level, entry);
    if (parent.Size() > 0) target = target->DefineUValDict(parent);
    if (target == nullptr) return nullptr;
    KV_UVal *value = move.place(std::move(detached.node), *target);
    move.finish();
    return value;
}
