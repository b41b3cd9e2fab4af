// Settings, registrations and the fetching of links from memory. What stores is in kv_cacher_store.cpp, what
// deals with files in kv_cacher_files.cpp.

#include "kvbase/com/kv_cacher.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "com/kv_cacher_table.h"

using namespace kv::detail;

namespace {

// Who waits is woken by the events. The time is the net below, for a signal that nobody gives.
constexpr std::uint32_t kMostMilliseconds = 1000;

void joinWaiters(LinkEntry &entry, int threadId) {
    if (std::find(entry.waiters.begin(), entry.waiters.end(), threadId) == entry.waiters.end())
        entry.waiters.push_back(threadId);
}

// A thread that has waited for the creator goes on. The signal woke it alone, so it wakes the next one.
void leaveWaiters(CacheTables &tables, LinkEntry &entry, int threadId) {
    const auto itself = std::find(entry.waiters.begin(), entry.waiters.end(), threadId);
    if (itself != entry.waiters.end()) entry.waiters.erase(itself);
    if (entry.waiters.empty())
        tables.events.close(std::exchange(entry.createEvent, kNoEvent));
    else
        tables.events.signal(entry.createEvent);
}

// A new entry with its creator; -1 when the table is full.
int addEntry(CacheTables &tables, const LinkKey &key, int threadId, std::int32_t pinned) {
    if (tables.links.isFull()) return -1;
    EventHandle createEvent = tables.events.create();
    const int index = tables.links.add(key);
    LinkEntry &entry = tables.links[index];
    entry.pinned = pinned;
    entry.creator = threadId;
    entry.createEvent = createEvent;
    entry.useCount = 1;
    return index;
}

}  // namespace

KV_Cacher::KV_Cacher(KV_COMManager *manager)
    : m_manager(manager), m_tables(std::make_unique<CacheTables>()) {}

KV_Cacher::~KV_Cacher() { RemoveMemCache(); }

// ---- registration ----------------------------------------------------------------------------------------

std::int32_t KV_Cacher::Register(KV_CheckSum *sum, int threadId, std::int32_t pinned, void *&createEvent,
                                 void *&deleteEvent) {
    const bool hasWaited = std::exchange(createEvent, kNoEvent) != kNoEvent;
    deleteEvent = kNoEvent;
    KV_SynchCacher lock(&m_mutex);
    const LinkKey key(*sum);
    const int index = m_tables->links.find(key);
    if (index < 0) return addEntry(*m_tables, key, threadId, pinned);
    LinkEntry &entry = m_tables->links[index];
    entry.pinned = pinned;
    if (!entry.deletePending && entry.creator >= 0) {
        joinWaiters(entry, threadId);
        createEvent = entry.createEvent;
        return index;
    }
    if (hasWaited) leaveWaiters(*m_tables, entry, threadId);
    if (entry.deletePending)
        deleteEvent = entry.deleteEvent;
    else
        ++entry.useCount;
    return index;
}

std::int32_t KV_Cacher::RegisterLink(KV_CheckSum *sum, int threadId, std::int32_t pinned) {
    void *createEvent = kNoEvent, *deleteEvent = kNoEvent;
    for (;;) {
        const std::int32_t index = Register(sum, threadId, pinned, createEvent, deleteEvent);
        if (createEvent != kNoEvent)
            CacherWait(createEvent, kMostMilliseconds);
        else if (deleteEvent != kNoEvent)
            CacherWait(deleteEvent, kMostMilliseconds);
        else
            return index;
    }
}

void KV_Cacher::UnRegister(KV_CheckSum *sum, int threadId, bool unpin) {
    Released released;
    KV_SynchCacher lock(&m_mutex);
    const int index = m_tables->links.find(LinkKey(*sum));
    if (index < 0) return;
    LinkEntry &entry = m_tables->links[index];
    if (unpin) entry.pinned = 0;
    if (entry.creator == threadId) {
        m_tables->events.signal(entry.createEvent);
        entry.creator = -1;
        if (entry.waiters.empty()) m_tables->events.close(std::exchange(entry.createEvent, kNoEvent));
    }
    if (entry.useCount > 0) --entry.useCount;
    if (entry.useCount == 0 && entry.deletePending) m_tables->remove(index, released);
}

bool KV_Cacher::InMemCache(KV_CheckSum *sum) {
    KV_SynchCacher lock(&m_mutex);
    const LinkEntry *entry = m_tables->links.entryOf(LinkKey(*sum));
    return entry != nullptr && entry->link;
}

int KV_Cacher::CreateThreadID(KV_CheckSum *sum) {
    KV_SynchCacher lock(&m_mutex);
    const LinkEntry *entry = m_tables->links.entryOf(LinkKey(*sum));
    return entry == nullptr ? -1 : entry->creator;
}

// ---- fetching --------------------------------------------------------------------------------------------
// No object is made or copied under the lock: the manager and modules have locks of their own, and call the
// cacher under them.

void KV_Cacher::GetLinkCore(KV_CheckSum *sum, int threadId, KV_ILinkCore *&link, bool keep,
                            std::int32_t pinned) {
    if (RegisterLink(sum, threadId, pinned) < 0) return;
    const KV_CachingMethod method = m_method;
    if (method == KV_CACHING_MEMORY) fetchFromMemory(sum, link);
    if (method == KV_CACHING_FILES) fetchFromFile(sum, threadId, link, keep);
}

// Gives the caller the content of the link in memory. False when there is none.
bool KV_Cacher::fetchCached(KV_CheckSum *sum, KV_ILinkCore *&link) {
    Held<KV_ILinkCore> cached;
    {
        KV_SynchCacher lock(&m_mutex);
        const LinkEntry *entry = m_tables->links.entryOf(LinkKey(*sum));
        if (entry == nullptr || !entry->link) return false;
        if (link != nullptr && link->GetId() == entry->link->GetId()) return true;
        cached = Held<KV_ILinkCore>::more(entry->link.get());
    }
    if (link != nullptr)
        copyLink(*link, *cached, CopyMode::towardsCaller);
    else
        link = copyOf(*m_manager, *cached, CopyMode::towardsCaller).give();
    return true;
}

void KV_Cacher::fetchFromMemory(KV_CheckSum *sum, KV_ILinkCore *&link) {
    if (fetchCached(sum, link) || link == nullptr) return;
    Held<KV_ILinkCore> copy = copyOf(*m_manager, *link, CopyMode::intoCache);
    {
        KV_SynchCacher lock(&m_mutex);
        LinkEntry *entry = m_tables->links.entryOf(LinkKey(*sum));
        if (entry == nullptr) return;
        if (!entry->link) {
            entry->link = std::move(copy);
            return;
        }
    }
    fetchCached(sum, link);  // another thread's came first
}

// ---- events ----------------------------------------------------------------------------------------------

void KV_Cacher::CacherCreateEvent(void *&event) {
    KV_SynchCacher lock(&m_mutex);
    event = m_tables->events.create();
}

void KV_Cacher::CacherCloseHandle(void *event) {
    KV_SynchCacher lock(&m_mutex);
    m_tables->events.close(event);
}

bool KV_Cacher::CacherWait(void *event, std::uint32_t milliseconds) {
    std::shared_ptr<CacherEvent> open;
    {
        KV_SynchCacher lock(&m_mutex);
        open = m_tables->events.find(event);
    }
    return open == nullptr || open->wait(std::chrono::milliseconds(milliseconds));
}

// ---- state -----------------------------------------------------------------------------------------------

KV_CacherCounts KV_Cacher::GetCounts() {
    KV_SynchCacher lock(&m_mutex);
    KV_CacherCounts counts;
    counts.entries = m_tables->links.count();
    for (int i = 0; i < counts.entries; ++i) {
        const LinkEntry &entry = m_tables->links[i];
        if (entry.link) ++counts.links;
        if (entry.creator >= 0) ++counts.creating;
        counts.waiters += static_cast<std::int32_t>(entry.waiters.size());
        counts.users += entry.useCount;
        if (entry.deletePending) ++counts.pendingDeletion;
    }
    counts.openHandles = m_tables->events.count();
    counts.profiles = static_cast<std::int32_t>(m_tables->profiles.size());
    return counts;
}
