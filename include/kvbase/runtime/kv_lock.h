#pragma once

// The locks of the system. All of them are private to one process, and none has a name. A mutex is taken
// through its scope lock alone, so that every way out of a block releases it.
//
// Locks report nothing while they are used. A mutex that cannot be made tells so by throwing, at once: one
// that locked nothing would let two threads at what it guards. A semaphore guards nothing, and one that
// cannot be made just does nothing.

#include <memory>

#include "kvbase/base/export.h"

namespace kv::platform {
class KernelMutex;
class RecursiveMutex;
class Semaphore;
}  // namespace kv::platform

/// A mutex that the thread which holds it may take again; it is free once it was released as often.
/// Copies are refused: the threads that wait for a mutex wait for that very object.
class KV_EXPORT KV_Mutex {
public:
    /// A mutex that nobody holds. Throws std::bad_alloc without memory for one, std::system_error when the
    /// system refuses one.
    KV_Mutex();
    KV_Mutex(const KV_Mutex &) = delete;
    KV_Mutex &operator=(const KV_Mutex &) = delete;
    /// No thread may hold it or wait for it.
    virtual ~KV_Mutex();

private:
    friend class KV_Synch;
    void Lock();
    void Unlock();

    std::unique_ptr<kv::platform::RecursiveMutex> m_mutex;
};

/// The mutex of a cache's tables: recursive and private to the process, as KV_Mutex, but a type of its own,
/// so that the two kinds cannot be taken for each other. On Windows it is a mutex of the kernel (without a
/// name), where KV_Mutex is a critical section; each use is a call of the system there.
class KV_EXPORT KV_MutexCacher {
public:
    /// A mutex that nobody holds. Throws std::bad_alloc without memory for one, std::system_error when the
    /// system refuses one.
    KV_MutexCacher();
    KV_MutexCacher(const KV_MutexCacher &) = delete;
    KV_MutexCacher &operator=(const KV_MutexCacher &) = delete;
    /// No thread may hold it or wait for it.
    virtual ~KV_MutexCacher();

private:
    friend class KV_SynchCacher;
    void Lock();
    void Unlock();

    std::unique_ptr<kv::platform::KernelMutex> m_mutex;
};

/// Holds a KV_Mutex from its construction to its end, or to Reset. Lives on the stack of one thread.
class KV_EXPORT KV_Synch {
public:
    /// Waits for the mutex, without a time limit, and takes it. A null pointer means no lock at all. The
    /// mutex stays its owner's and has to outlive the lock.
    explicit KV_Synch(KV_Mutex *mutex) : m_mutex(mutex) {
        if (m_mutex != nullptr) m_mutex->Lock();
    }
    KV_Synch(const KV_Synch &) = delete;
    KV_Synch &operator=(const KV_Synch &) = delete;
    /// Releases the mutex, unless Reset has done so.
    virtual ~KV_Synch() {
        if (m_mutex != nullptr) m_mutex->Unlock();
    }

    /// Releases the mutex at once; the destructor then does nothing, nor does a second Reset.
    void Reset() {
        if (m_mutex != nullptr) m_mutex->Unlock();
        m_mutex = nullptr;
    }

private:
    KV_Mutex *m_mutex;
};

/// KV_Synch for a KV_MutexCacher.
class KV_EXPORT KV_SynchCacher {
public:
    /// Waits for the mutex, without a time limit, and takes it. A null pointer means no lock at all. The
    /// mutex stays its owner's and has to outlive the lock.
    explicit KV_SynchCacher(KV_MutexCacher *mutex) : m_mutex(mutex) {
        if (m_mutex != nullptr) m_mutex->Lock();
    }
    KV_SynchCacher(const KV_SynchCacher &) = delete;
    KV_SynchCacher &operator=(const KV_SynchCacher &) = delete;
    /// Releases the mutex, unless Reset has done so.
    virtual ~KV_SynchCacher() {
        if (m_mutex != nullptr) m_mutex->Unlock();
    }

    /// Releases the mutex at once; the destructor then does nothing, nor does a second Reset.
    void Reset() {
        if (m_mutex != nullptr) m_mutex->Unlock();
        m_mutex = nullptr;
    }

private:
    KV_MutexCacher *m_mutex;
};

/// A counting semaphore with a count of at most 1024. The library itself uses none: it is for modules and
/// programs. Copies are refused, as those of the mutexes.
class KV_EXPORT KV_Semaphore {
public:
    /// A semaphore with the count initial, 0..1024. With any other count, or when memory is lacking,
    /// there is no semaphore, and Signal and Wait do nothing. Throws nothing.
    explicit KV_Semaphore(int initial = 0);
    KV_Semaphore(const KV_Semaphore &) = delete;
    KV_Semaphore &operator=(const KV_Semaphore &) = delete;
    /// No thread may wait for it.
    virtual ~KV_Semaphore();

    /// Raises the count by 1, which lets one waiting thread go on. At 1024 the count stays.
    void Signal();
    /// Waits, without a time limit, for a count above 0, and lowers it by 1.
    void Wait();

private:
    int m_initial;
    std::unique_ptr<kv::platform::Semaphore> m_semaphore;
};
