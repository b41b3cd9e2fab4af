// The storing of links and profiles in memory, and what leaves it again.

#include <array>
#include <limits>
#include <list>
#include <map>
#include <utility>

#include "com/kv_cacher_table.h"
#include "kvbase/com/kv_cacher.h"

using namespace kv::detail;

namespace {

bool canBeEvicted(const LinkEntry &entry) {
    return !entry.deletePending && !entry.keep && entry.pinned == 0 && entry.link;
}

}  // namespace

void KV_Cacher::SetLink(KV_CheckSum *sum, KV_IColorMatcher *matcher, bool keep, KV_CachingMethod method) {
    if (matcher == nullptr) return;
    if (method == KV_CACHING_AS_SET) method = m_method;
    const bool withFile = method == KV_CACHING_FILES;
    if (method == KV_CACHING_OFF || (withFile && !GetLinkFilePath(sum).empty())) return;
    if (!InMemCache(sum)) storeLink(sum, Held<KV_ILinkCore>(matcher->GetLinkCore()), keep, nullptr);
    if (withFile) storeFile(sum, *matcher);
}

void KV_Cacher::SetLinkCore(KV_CheckSum *sum, KV_ILinkCore *link, bool keep, std::int32_t pinned,
                            KV_CachingMethod method) {
    if (method == KV_CACHING_AS_SET) method = m_method;
    if (method == KV_CACHING_FILES && GetLinkFilePath(sum).empty()) method = KV_CACHING_MEMORY;
    if (method == KV_CACHING_MEMORY) storeLink(sum, Held<KV_ILinkCore>::more(link), keep, &pinned);
}

void KV_Cacher::storeLink(KV_CheckSum *sum, LinkRef link, bool keep, const std::int32_t *pinned) {
    if (!link) return;
    Released released;
    KV_SynchCacher lock(&m_mutex);
    LinkTable &links = m_tables->links;
    const LinkKey key(*sum);
    const int found = links.find(key);
    if (found >= 0 && links[found].link) return;
    link->SetId(++m_tables->linkCounter);
    const int index = found >= 0 ? found : links.add(key);
    if (index < 0) return;
    LinkEntry &entry = links[index];
    entry.keep = keep;
    if (pinned != nullptr) entry.pinned = *pinned;
    if (!keep && entry.pinned == 0) addSize(link->GetSize());
    entry.link = std::move(link);
    evict(found, released);
}

// stored is the entry that is not to go, -1 for none.
void KV_Cacher::evict(int stored, Released &released) {
    LinkTable &links = m_tables->links;
    for (int i = 0; i < links.count() && links.count() >= 2 && m_size > m_maxSize;) {
        LinkEntry &entry = links[i];
        if (i == stored || !canBeEvicted(entry)) {
            ++i;
            continue;
        }
        const std::uint32_t size = entry.link->GetSize();
        if (entry.useCount != 0) {
            entry.deleteEvent = m_tables->events.create();
            entry.deletePending = true;
            ++i;
        } else {
            if (stored == links.count() - 1) stored = i;  // the last one comes here
            m_tables->remove(i, released);
        }
        subtractSize(size);
    }
}

void KV_Cacher::addSize(std::uint32_t size) {
    const std::uint32_t room = std::numeric_limits<std::uint32_t>::max() - m_size;
    m_size += size < room ? size : room;
}

void KV_Cacher::subtractSize(std::uint32_t size) { m_size -= size < m_size ? size : m_size.load(); }

// Nothing is allocated: the destructor has no way to report that memory is lacking.
void KV_Cacher::RemoveMemCache() {
    std::array<Held<KV_ILinkCore>, LinkTable::kCapacity> links;
    std::map<LinkKey, Held<KV_IProfile>> profiles;
    KV_SynchCacher lock(&m_mutex);
    m_tables->profiles.swap(profiles);
    m_tables->profileOrder.clear();
    for (int i = 0; i < m_tables->links.count(); ++i) {
        LinkEntry &entry = m_tables->links[i];
        links[static_cast<std::size_t>(i)] = std::move(entry.link);
        m_tables->closeEvents(entry);
        m_tables->links.blank(i);
    }
    m_size = 0;
}

void KV_Cacher::SetProfile(KV_CheckSum *sum, KV_IProfile *profile) {
    if (profile == nullptr) return;
    Released released;
    KV_SynchCacher lock(&m_mutex);
    auto &profiles = m_tables->profiles;
    auto &order = m_tables->profileOrder;
    std::list<LinkKey> newest{LinkKey(*sum)};
    const auto [at, isNew] = profiles.try_emplace(newest.front());
    if (!isNew) return;
    at->second = Held<KV_IProfile>::more(profile);
    order.splice(order.begin(), newest);
    addSize(profile->GetSize());
    while (m_size > m_maxSize && !order.empty()) {
        const auto oldest = profiles.find(order.back());
        const std::uint32_t size = oldest->second->GetSize();
        released.objects.emplace_back(std::move(oldest->second));
        profiles.erase(oldest);
        order.pop_back();
        subtractSize(size);
    }
}

KV_IProfile *KV_Cacher::GetProfile(KV_CheckSum *sum) {
    KV_SynchCacher lock(&m_mutex);
    const auto at = m_tables->profiles.find(LinkKey(*sum));
    return at == m_tables->profiles.end() ? nullptr : Held<KV_IProfile>::more(at->second.get()).give();
}
