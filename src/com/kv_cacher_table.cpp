#include "com/kv_cacher_table.h"

#include <cstring>
#include <utility>

namespace kv::detail {

// Checksums are digests as a rule, but need not be: all bytes have a say.
LinkTable::Mark LinkTable::markOf(const LinkKey &key) {
    std::uint64_t high, low;
    std::memcpy(&high, key.bytes.data(), sizeof high);
    std::memcpy(&low, key.bytes.data() + sizeof high, sizeof low);
    // Multiplied by the golden ratio and by pi, as odd integers: the high bits depend on all bits.
    const std::uint64_t mixed = high * 0x9E3779B97F4A7C15u + low * 0x3243F6A8885A308Du;
    return static_cast<Mark>((mixed ^ (mixed >> 29)) >> 16);
}

int LinkTable::find(const LinkKey &key) const {
    constexpr std::size_t kBlock = 64;
    static_assert(kCapacity % kBlock == 0);
    const Mark mark = markOf(key);
    const auto count = static_cast<std::size_t>(m_count);
    for (std::size_t block = 0; block < count; block += kBlock) {
        Mark hit = 0;  // one loop without a way out, for the compiler to do it in a few steps
        for (std::size_t i = 0; i < kBlock; ++i)
            hit = static_cast<Mark>(hit | (m_marks[block + i] == mark));
        if (hit == 0) continue;
        for (std::size_t i = block; i < block + kBlock && i < count; ++i)
            if (m_marks[i] == mark && m_keys[i] == key) return static_cast<int>(i);
    }
    return -1;
}

LinkEntry *LinkTable::entryOf(const LinkKey &key) {
    const int index = find(key);
    return index < 0 ? nullptr : &(*this)[index];
}

void LinkTable::setKey(std::size_t index, const LinkKey &key) {
    m_keys[index] = key;
    m_marks[index] = markOf(key);
}

int LinkTable::add(const LinkKey &key) {
    if (isFull()) return -1;
    setKey(static_cast<std::size_t>(m_count), key);
    return m_count++;
}

void LinkTable::remove(int index) {
    const auto last = static_cast<std::size_t>(--m_count), hole = static_cast<std::size_t>(index);
    LinkEntry entry = std::move(m_entries[last]);
    m_entries[last] = LinkEntry();
    if (hole == last) return;
    m_entries[hole] = std::move(entry);
    setKey(hole, m_keys[last]);
}

void LinkTable::blank(int index) {
    (*this)[index] = LinkEntry();
    setKey(static_cast<std::size_t>(index), LinkKey());
}

void CacheTables::closeEvents(LinkEntry &entry) {
    events.close(std::exchange(entry.createEvent, kNoEvent));
    events.close(std::exchange(entry.deleteEvent, kNoEvent));
}

void CacheTables::remove(int index, Released &released) {
    released.objects.emplace_back(std::move(links[index].link));
    closeEvents(links[index]);
    links.remove(index);
}

}  // namespace kv::detail
