#pragma once

// The cache of colour links and profiles, in memory and as files, and the place where threads agree who
// builds a link. KV_COMManager owns one; modules reach it by KV_COMManager::Cacher().
//
// A thread that needs the link of a checksum
// 1. calls GetLinkCore; afterwards it has the link, or it is the one to build it;
// 2. in the latter case builds it and stores it by SetLink or SetLinkCore;
// 3. in every case, also when one of these raised, calls UnRegister when it is done with the link.

#include <atomic>
#include <cstdint>
#include <memory>

#include "kvbase/base/export.h"
#include "kvbase/base/types.h"
#include "kvbase/com/kv_cached_interfaces.h"
#include "kvbase/runtime/kv_checksum.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/runtime/kv_lock.h"

class KV_COMManager;

namespace kv::detail {
struct CacheTables;
struct Released;
template <class Object>
class Held;
}  // namespace kv::detail

/// Where links are kept.
enum KV_CachingMethod : std::int32_t {
    KV_CACHING_OFF = 0,     ///< nowhere; threads still wait for each other
    KV_CACHING_FILES = 1,   ///< in link files, and in memory
    KV_CACHING_MEMORY = 2,  ///< in memory
    KV_CACHING_AS_SET = 3,  ///< for SetLink and SetLinkCore alone: as the cacher is set
};

/// How full a cacher is, and who uses it: for tests, and to find users that never left.
struct KV_CacherCounts {
    std::int32_t entries = 0;          ///< of the table of links, blank ones included; at most 1024
    std::int32_t links = 0;            ///< entries that have a link
    std::int32_t creating = 0;         ///< entries that have a creator
    std::int32_t waiters = 0;          ///< threads that wait for creators
    std::int32_t users = 0;            ///< registrations that have not ended
    std::int32_t pendingDeletion = 0;  ///< entries that were evicted and go with their last user
    std::int32_t openHandles = 0;      ///< events that were made and not yet closed
    std::int32_t profiles = 0;         ///< profiles
};

/// Keeps links and profiles by their checksums, with one reference each, up to a limit of their sizes.
///
/// Links lie in a table of 1024 entries. An entry is made by the first thread that registers for its
/// checksum, which so becomes the link's creator; threads that come later wait until it unregisters. A
/// creator that gives up just unregisters: those that waited then go on without a link, all of them, and the
/// first link that one of them stores stays. Entries are evicted from the beginning of the table onward,
/// whenever a link is stored and the sizes exceed the limit; one in use goes when its last user leaves, and
/// who asks for it in the meantime waits for that. When the table is full, further checksums are not cached.
///
/// Threads are told apart by numbers of the callers' choice, 0 or above, one a thread. A thread that created
/// an entry must not register for it again before it has unregistered: it would wait for itself.
///
/// Any number of threads may call all operations at once. Modules are called, and their objects released,
/// while no lock is held, except for AddRef, GetId, SetId and GetSize; so whatever lock a module or the
/// manager takes, this one comes later. Only the last user of the object may destroy it. Checksums are only
/// read and must not be null.
class KV_EXPORT KV_Cacher {
public:
    /// An empty cache, off, with a limit of 524288. Makes the objects of the profile module by manager, which
    /// stays its owner's and has to outlive the cacher. It may be null where nothing needs such an object:
    /// with the method 2, as long as GetLinkCore meets no link.
    explicit KV_Cacher(KV_COMManager *manager);
    KV_Cacher(const KV_Cacher &) = delete;
    KV_Cacher &operator=(const KV_Cacher &) = delete;
    /// Releases all that it holds, as RemoveMemCache does. Files stay.
    ~KV_Cacher();

    // ---- settings ----------------------------------------------------------------------------------------

    /// Where links are kept. KV_CACHING_OFF at first.
    KV_CachingMethod GetCachingMethod() const { return m_method; }
    /// Takes effect from the next call on; what is in the cache stays there.
    void SetCachingMethod(KV_CachingMethod method) { m_method = method; }
    /// Whether the method isn't 0.
    bool CachingIsOn() const { return m_method != KV_CACHING_OFF; }
    /// The limit of the sizes of all links and profiles, in the unit of their GetSize. A lower one evicts
    /// nothing before something is stored.
    void SetMaxCacheSize(std::uint32_t size) { m_maxSize = size; }
    /// The sum of the sizes of all profiles, and of the links that count: those neither kept nor pinned when
    /// they were stored by SetLink or SetLinkCore. What is evicted takes its size away, down to 0 at most,
    /// whether it was counted or not; a sum beyond 32 bits stays at their largest number.
    std::uint32_t GetCurrentCacheSize() const { return m_size; }
    /// A flag that is only kept here. False at first.
    /// That flag.
    bool GetMultiThreading() const { return m_multiThreading; }
    bool MultiThreadingIsOn() const { return m_multiThreading; }
    void SetMultiThreading(bool on) { m_multiThreading = on; }

    // ---- links -------------------------------------------------------------------------------------------

    /// One step of a registration, which waits for nothing. Returns the entry's index, which may change
    /// with the next call of anyone, or -1 when the table is full and nobody is registered.
    ///
    /// The handles are -1 at the first call. When one of them is another afterwards, the thread isn't
    /// registered yet: it waits for that event (CacherWait) and calls again with the handles as they are.
    /// createEvent tells that another thread is creating the link, deleteEvent that the entry was evicted
    /// and has to go first. When both are -1, the thread is registered: as the creator of a new entry
    /// (CreateThreadID tells), or as a user of one whose creator is done. pinned replaces that of the entry.
    std::int32_t Register(KV_CheckSum *sum, int threadId, std::int32_t pinned, void *&createEvent,
                          void *&deleteEvent);
    /// Registers, and waits until the thread may go on. Returns as Register.
    std::int32_t RegisterLink(KV_CheckSum *sum, int threadId, std::int32_t pinned);
    /// Ends a registration. Those who wait for this creator, or for the end of an evicted entry whose last
    /// user this is, go on. unpin takes the entry's pin away. Does nothing when there is no such entry.
    void UnRegister(KV_CheckSum *sum, int threadId, bool unpin);

    /// Registers as RegisterLink does, and then fetches the link by the method that is set. link is null,
    /// or an object of the caller's that holds, or once held, the link of this checksum.
    ///
    /// By method 2: with a link in memory, link becomes a new one with its content (the caller's, to be
    /// released), or takes its content when it was given and has another id. Without one, a link that was
    /// given is copied into memory; it isn't numbered, and its size isn't counted. With null for both, link
    /// stays null: the caller is the one to build it.
    ///
    /// By method 1: a link in memory is given in the same way. Without one, and when the caller is the
    /// creator and there is a link file, that is read into memory (keep is for this alone), and link becomes
    /// a new one with its content; one that was given is released. Else link stays as it was.
    ///
    /// By method 0, and when the table is full, link stays as it was. Throws what CreateObject and the
    /// module throw, reading a damaged link file included. link is as it was then, unless copying into it
    /// failed, and the caller is registered.
    void GetLinkCore(KV_CheckSum *sum, int threadId, KV_ILinkCore *&link, bool keep, std::int32_t pinned);

    /// Stores what matcher's GetLinkCore gives, unless there is a link already: the first one stored stays.
    /// keep keeps it out of the sizes, and from being evicted. It gets the next number as its id. Without
    /// room in the table the link is released again. Null is ignored, a null link too.
    ///
    /// By method 2 in memory. By method 1, and when there is no link file of this checksum, in memory and in
    /// a link file, if the matcher gives a profile. The file appears under its name when it is complete; a
    /// profile that cannot be saved leaves no file and raises nothing. While the cacher's own method is
    /// another one, an explicit 1 replaces an older file. By method 0 nowhere.
    ///
    /// Throws what the matcher throws.
    void SetLink(KV_CheckSum *sum, KV_IColorMatcher *matcher, bool keep, KV_CachingMethod method);
    /// Stores link itself in memory, with a reference more, in the same way: it must not be changed any
    /// more. Sets the entry's pin, which works as keep does while it isn't 0. By method 1 it is stored when
    /// there is no link file; it makes none. Null is ignored.
    void SetLinkCore(KV_CheckSum *sum, KV_ILinkCore *link, bool keep, std::int32_t pinned,
                     KV_CachingMethod method);

    /// Whether there is a link in memory.
    bool InMemCache(KV_CheckSum *sum);
    /// The thread that is creating the link, -1 for none.
    int CreateThreadID(KV_CheckSum *sum);

    /// Releases all links and profiles. The entries of the table stay, without checksum, users and events,
    /// so that their room is lost: a table that has taken 1024 checksums stays full. Who waits for one of
    /// them goes on, and registers anew. Registrations end with it: who was registered must not unregister
    /// once somebody has registered anew for the same checksum, or it ends that one's registration.
    void RemoveMemCache();

    // ---- events ------------------------------------------------------------------------------------------
    // A handle means something to its cacher alone; none is given twice.

    /// Makes an event that lets one waiter through for each signal, not signalled.
    void CacherCreateEvent(void *&event);
    /// Closes an event: those who wait for it go on at once. One that is closed already, or -1, is ignored.
    void CacherCloseHandle(void *event);
    /// Waits until the event is signalled or closed, or the time is over. False when the time was over. An
    /// event that is closed already is not waited for.
    bool CacherWait(void *event, std::uint32_t milliseconds);

    // ---- profiles ----------------------------------------------------------------------------------------

    /// Stores a profile, with a reference more, unless there is one of this checksum. Then, while the sizes
    /// exceed the limit, those stored longest ago go, this one too when no other is left. Null is ignored.
    void SetProfile(KV_CheckSum *sum, KV_IProfile *profile);
    /// The profile, with a reference for the caller; null when there is none.
    KV_IProfile *GetProfile(KV_CheckSum *sum);

    // ---- link files --------------------------------------------------------------------------------------
    // A link file is a profile in the folder of the caching path, "templink_", the checksum's text and
    // ".icc". While it is written its name has more between checksum and ending. Whether the file exists is
    // all that processes share: one that exists is not written again.

    /// Keeps the path's text, which is put in front of the files' names as it stands: it has to end with a
    /// separator. Makes the folder, and those it lies in; the first three characters are passed over as the
    /// drive. Failures show in that no file gets written. Empty at first: the current folder.
    void SetCachingPath(const KV_FileSpec &path);
    /// The link file of a checksum, when the method is 1 and it exists; else empty.
    KV_WString GetLinkFilePath(KV_CheckSum *sum);
    /// Deletes all files of the folder whose names begin with "templink_", until one of them cannot be
    /// deleted.
    void RemoveFileCache();
    /// Deletes those among these files that are no profiles of this version: that cannot be opened, have no
    /// text tag, or whose text doesn't have the version of this library behind "Kalvor Version" and four
    /// more characters. Raises nothing of what the module does; without a profile module all count as such
    /// and go.
    void RemoveOldLinks();

    // ---- state -------------------------------------------------------------------------------------------

    /// How full the cacher is at the moment.
    KV_CacherCounts GetCounts();

private:
    using LinkRef = kv::detail::Held<KV_ILinkCore>;

    // Each of these takes the lock for the moments in which it looks at the tables.
    bool fetchCached(KV_CheckSum *sum, KV_ILinkCore *&link);
    void fetchFromMemory(KV_CheckSum *sum, KV_ILinkCore *&link);
    void fetchFromFile(KV_CheckSum *sum, int threadId, KV_ILinkCore *&link, bool keep);
    void storeLink(KV_CheckSum *sum, LinkRef link, bool keep, const std::int32_t *pinned);
    void storeFile(KV_CheckSum *sum, KV_IColorMatcher &matcher);
    KV_WString GetLinkName(KV_CheckSum *sum);
    KV_WString cachingPath();
    // These need it held.
    void evict(int stored, kv::detail::Released &released);
    void addSize(std::uint32_t size);
    void subtractSize(std::uint32_t size);

    KV_COMManager *m_manager;
    KV_MutexCacher m_mutex;
    std::unique_ptr<kv::detail::CacheTables> m_tables;  // what it points to is guarded by m_mutex
    std::atomic<std::uint32_t> m_size{0};               // changed under m_mutex
    std::atomic<std::uint32_t> m_maxSize{0x80000};
    std::atomic<KV_CachingMethod> m_method{KV_CACHING_OFF};
    std::atomic<bool> m_multiThreading{false};
};
