#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <vector>

#include "com/kv_cacher_events.h"
#include "com/kv_cacher_objects.h"
#include "kvbase/base/types.h"

namespace kv::detail {

/// The bytes of a checksum, in its order.
struct LinkKey {
    LinkKey() = default;
    explicit LinkKey(const KV_CheckSum &sum) { sum.GetSum(bytes.data()); }
    auto operator<=>(const LinkKey &) const = default;  // NOLINT(modernize-use-nullptr)

    std::array<unsigned char, 16> bytes{};
};

/// What the cache knows of one link.
struct LinkEntry {
    Held<KV_ILinkCore> link;  ///< null until one is stored
    bool keep = false;        ///< not counted, never evicted
    std::int32_t pinned = 0;  ///< the same while not 0
    int creator = -1;         ///< the thread that creates the link; below 0 for none
    std::vector<int> waiters;
    EventHandle createEvent = kNoEvent;
    int useCount = 0;
    bool deletePending = false;
    EventHandle deleteEvent = kNoEvent;
};

/// The entries, in the order in which they were added as long as none is removed. Not locked.
class LinkTable {
public:
    static constexpr int kCapacity = 1024;

    int count() const { return m_count; }
    bool isFull() const { return m_count == kCapacity; }
    LinkEntry &operator[](int index) { return m_entries[static_cast<std::size_t>(index)]; }

    /// The first entry with that key, -1 when there is none.
    int find(const LinkKey &key) const;
    /// The same as a pointer, null when there is none.
    LinkEntry *entryOf(const LinkKey &key);
    /// A new entry behind the last one; -1 when the table is full.
    int add(const LinkKey &key);
    /// The last entry takes the place of the one at index.
    void remove(int index);
    /// Gives the entry at index the empty checksum and nothing else.
    void blank(int index);

private:
    // The search compares marks, many at a time, and looks at the keys behind those that are equal.
    using Mark = std::uint16_t;
    static Mark markOf(const LinkKey &key);
    void setKey(std::size_t index, const LinkKey &key);

    int m_count = 0;
    alignas(64) std::array<Mark, kCapacity> m_marks{};
    std::array<LinkKey, kCapacity> m_keys{};
    std::array<LinkEntry, kCapacity> m_entries{};
};

/// All that the cacher's lock guards.
struct CacheTables {
    LinkTable links;
    EventTable events;
    std::uint32_t linkCounter = 0;  ///< the number of the link stored last
    std::map<LinkKey, Held<KV_IProfile>> profiles;
    std::list<LinkKey> profileOrder;  ///< newest first
    KV_WString cachingPath;

    /// Closes the events of an entry.
    void closeEvents(LinkEntry &entry);
    /// Closes the events of the entry at index and removes it. Its link goes to released.
    void remove(int index, Released &released);
};

}  // namespace kv::detail
